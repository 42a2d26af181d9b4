// convert and check: macros as files. A macro file is the text form (.qm) or XML (.xml): a single
// macro in the form of the editor's "Edit XML" text, or a whole macro list (macros2.xml), of which
// --macro picks one by id or name.
//
//   quillmark convert IN OUT   reads IN by its extension and writes OUT by its own: .qm as UTF-8
//                              text, .xml as the single-macro XML in UTF-16LE like the store's files
//   quillmark check MACRO      prints each finding (text form: "file:line: message"; XML:
//                              "file: Macro/While[2]/If[1]: message") and exits 1, or prints
//                              "file: OK"; a list without --macro is checked macro by macro
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/macro_xml.h"
#include "macros/messages.h"
#include "macros/text_form.h"
#include "runtime/static_check.h"
#include "xml/file_io.h"
#include "xml/xml_error.h"

namespace qm::cli {
namespace {

// The texts of these commands.
constexpr std::u16string_view kNotAMacroFile = u"[1]: expected a .qm (text form) or .xml file";
constexpr std::u16string_view kSeveralMacros = u"[1] holds [2] macros: choose one with --macro ID|NAME";
constexpr std::u16string_view kNoMacro = u"[1] holds no macro";
constexpr std::u16string_view kListEntry = u"  [1]\t[2]";
constexpr std::u16string_view kCheckedClean = u"[1]: OK";

enum class Format { Text, Xml };

std::optional<Format> FormatOf(const std::string& file) {
    std::string extension = PathArg(file).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".qm") return Format::Text;
    if (extension == ".xml") return Format::Xml;
    return std::nullopt;
}

// A failure already worded for the user, with the file it concerns.
struct CommandFailure {
    std::u16string text;
};

struct LoadedMacro {
    std::shared_ptr<M2::Macro> macro;
    std::u16string root;  // the macro element's path in its document
};

// What a macro file holds, read whole.
struct MacroFile {
    std::string name;  // as given on the command line
    Format format = Format::Text;
    std::vector<LoadedMacro> macros;
    std::shared_ptr<M2::Macros> list;  // the list the macros came from, when the file holds one
    M2::TextFormLines lines;           // the text form's lines
};

MacroFile Load(const std::string& name, Format format) {
    MacroFile file;
    file.name = name;
    file.format = format;
    const std::u16string text = io::DecodeXmlBytes(io::ReadFileBytes(PathArg(name)));
    if (format == Format::Text) {
        file.macros.push_back({M2::ReadTextForm(text, name, &file.lines), u"Macro"});
        return file;
    }
    try {
        macros::MacroDocument document = macros::ReadMacroDocument(text);
        if (document.macro) {
            file.macros.push_back({document.macro, u"Macro"});
        } else {
            file.list = document.list;
            int index = 0;
            for (const auto& macro : document.list->macros) {
                file.macros.push_back({macro, u"Macros/Macro[" + Ascii(std::to_string(++index)) + u"]"});
            }
        }
    } catch (const xml::XmlError& e) {
        throw CommandFailure{FromUtf8(name) + u": " + e.FullText()};
    }
    return file;
}

// The macro --macro names: the one with that id, else the first with that name.
const LoadedMacro& Pick(const MacroFile& file, const std::string& selector) {
    const std::u16string wanted = FromUtf8(selector);
    for (const auto& loaded : file.macros) {
        if (loaded.macro->id.value == wanted) return loaded;
    }
    for (const auto& loaded : file.macros) {
        if (loaded.macro->name == wanted) return loaded;
    }
    throw CommandFailure{FromUtf8(file.name) + u": " + FormatMessage(macros::msg::kMacroNotFound, {wanted})};
}

// The one macro a conversion takes.
const LoadedMacro& Single(const MacroFile& file, const std::optional<std::string>& selector) {
    if (selector) return Pick(file, *selector);
    if (file.macros.size() == 1) return file.macros.front();
    if (file.macros.empty()) throw CommandFailure{FormatMessage(kNoMacro, {FromUtf8(file.name)})};
    std::u16string text =
        FormatMessage(kSeveralMacros, {FromUtf8(file.name), Ascii(std::to_string(file.macros.size()))});
    for (const auto& loaded : file.macros) {
        text += u"\n" + FormatMessage(kListEntry, {*loaded.macro->id, loaded.macro->name});
    }
    throw CommandFailure{std::move(text)};
}

// Runs a command body, turning every failure into its message on the error stream and exit 1.
template <class F>
int Guarded(Io& io, F&& body) {
    try {
        return body();
    } catch (const CommandFailure& e) {
        io.err << ToUtf8(e.text) << "\n";
    } catch (const M2::TextFormError& e) {
        io.err << ToUtf8(e.FullText()) << "\n";
    } catch (const io::FileError& e) {
        io.err << e.what() << "\n";
    }
    return kExitError;
}

struct ConvertOptions {
    std::string in;
    std::string out;
    std::optional<std::string> macro;
};

int Convert(const ConvertOptions& options, Io& io) {
    const std::optional<Format> from = FormatOf(options.in);
    const std::optional<Format> to = FormatOf(options.out);
    if (!from || !to) {
        io.err << ToUtf8(FormatMessage(kNotAMacroFile, {FromUtf8(from ? options.out : options.in)})) << "\n";
        return kExitUsage;
    }
    return Guarded(io, [&] {
        const MacroFile file = Load(options.in, *from);
        const M2::Macro& macro = *Single(file, options.macro).macro;
        std::string bytes;
        if (*to == Format::Text) {
            try {
                bytes = ToUtf8(M2::WriteTextForm(macro));
            } catch (const M2::TextFormError& e) {
                throw CommandFailure{FromUtf8(options.in) + u": " + e.FullText()};
            }
        } else {
            bytes = io::EncodeUtf16Le(M2::WriteMacroXml(macro));
        }
        io::WriteFileAtomically(PathArg(options.out), bytes);
        return kExitOk;
    });
}

struct CheckOptions {
    std::string file;
    std::optional<std::string> macro;
};

int Check(const CheckOptions& options, Io& io) {
    const std::optional<Format> format = FormatOf(options.file);
    if (!format) {
        io.err << ToUtf8(FormatMessage(kNotAMacroFile, {FromUtf8(options.file)})) << "\n";
        return kExitUsage;
    }
    return Guarded(io, [&] {
        const MacroFile file = Load(options.file, *format);
        std::vector<const LoadedMacro*> checked;
        if (options.macro) {
            checked.push_back(&Pick(file, *options.macro));
        } else {
            for (const auto& loaded : file.macros) checked.push_back(&loaded);
        }
        const std::u16string name = FromUtf8(options.file);
        bool found = false;
        for (const LoadedMacro* loaded : checked) {
            const M2::TextFormLines* lines = file.format == Format::Text ? &file.lines : nullptr;
            for (const Finding& finding : CheckMacro(*loaded->macro, lines, loaded->root)) {
                found = true;
                const std::u16string where =
                    finding.line > 0 ? name + u":" + Ascii(std::to_string(finding.line)) : name + u": " + finding.path;
                io.out << ToUtf8(where) << ": " << ToUtf8(finding.message) << "\n";
            }
        }
        if (found) return kExitError;
        io.out << ToUtf8(FormatMessage(kCheckedClean, {name})) << "\n";
        return kExitOk;
    });
}

}  // namespace

void RegisterTextFormCommands(CLI::App& app, CommandContext& context) {
    auto convertOptions = std::make_shared<ConvertOptions>();
    CLI::App* convert = app.add_subcommand(
        "convert", "Convert a macro between the text form (.qm) and XML (.xml), each file by its extension");
    convert->add_option("IN", convertOptions->in, "Macro file to read: .qm, or .xml holding a macro or a macro list")
        ->required();
    convert->add_option("OUT", convertOptions->out, "File to write: .qm (UTF-8 text) or .xml (UTF-16 XML)")
        ->required();
    convert->add_option("--macro", convertOptions->macro, "In a macro list: the id or name of the macro to take");
    convert->callback([&context, convertOptions] {
        context.action = [&context, convertOptions] { return Convert(*convertOptions, context.io); };
    });

    auto checkOptions = std::make_shared<CheckOptions>();
    CLI::App* check = app.add_subcommand(
        "check", "Check a macro without running it: unknown functions, argument counts, Else, Break and Continue");
    check->add_option("MACRO", checkOptions->file, "Macro file: .qm, or .xml holding a macro or a macro list")
        ->required();
    check->add_option("--macro", checkOptions->macro, "In a macro list: check only this macro (id or name)");
    check->callback([&context, checkOptions] {
        context.action = [&context, checkOptions] { return Check(*checkOptions, context.io); };
    });
}

}  // namespace qm::cli
