// A macro file named on the command line: the text form (.qm) or XML (.xml), the latter holding a
// single macro (the editor's "Edit XML" text) or a whole macro list, of which --macro picks one by
// id or name. run, convert and check all read macros this way.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "macros/m2_schema.h"
#include "macros/text_form.h"

namespace qm::cli {

// A failure already worded for the user, with the exit code it ends the command with.
struct CommandFailure {
    std::u16string text;
    int code = kExitError;
};

enum class MacroFormat { Text, Xml };

// By the file's extension, in any letter case; nothing for any other extension.
std::optional<MacroFormat> MacroFormatOf(const std::string& file);

struct LoadedMacro {
    std::shared_ptr<M2::Macro> macro;
    std::u16string root;  // the macro element's path in its document, for findings
};

struct MacroFile {
    std::string name;  // as given on the command line
    MacroFormat format = MacroFormat::Text;
    std::vector<LoadedMacro> macros;
    std::shared_ptr<M2::Macros> list;  // the list the macros came from, when the file holds one
    M2::TextFormLines lines;           // the text form's lines
};

// Reads the whole file. XML that does not read fails with the file's name and the reader's
// message; the text form throws its own M2::TextFormError, which carries file and line.
MacroFile LoadMacroFile(const std::string& name, MacroFormat format);

// The macro --macro names: the one with that id, else the first with that name.
const LoadedMacro& PickMacro(const MacroFile& file, const std::string& selector);

// The macro a command takes: the one --macro names, or the file's only macro. A list of several
// without --macro is a usage error that lists them.
const LoadedMacro& SingleMacro(const MacroFile& file, const std::optional<std::string>& selector);

}  // namespace qm::cli
