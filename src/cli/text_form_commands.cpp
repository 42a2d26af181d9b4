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
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/macro_file.h"
#include "cli/messages.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/macro_xml.h"
#include "macros/text_form.h"
#include "runtime/static_check.h"
#include "xml/file_io.h"

namespace qm::cli {
namespace {

// Runs a command body, turning every failure into its message on the error stream and its exit
// code (1 unless the failure says otherwise).
template <class F>
int Guarded(Io& io, F&& body) {
    try {
        return body();
    } catch (const CommandFailure& e) {
        io.err << ToUtf8(e.text) << "\n";
        return e.code;
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
    const std::optional<MacroFormat> from = MacroFormatOf(options.in);
    const std::optional<MacroFormat> to = MacroFormatOf(options.out);
    if (!from || !to) {
        io.err << ToUtf8(FormatMessage(msg::kNotAMacroFile, {FromUtf8(from ? options.out : options.in)})) << "\n";
        return kExitUsage;
    }
    return Guarded(io, [&] {
        const MacroFile file = LoadMacroFile(options.in, *from);
        const M2::Macro& macro = *SingleMacro(file, options.macro).macro;
        std::string bytes;
        if (*to == MacroFormat::Text) {
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
    const std::optional<MacroFormat> format = MacroFormatOf(options.file);
    if (!format) {
        io.err << ToUtf8(FormatMessage(msg::kNotAMacroFile, {FromUtf8(options.file)})) << "\n";
        return kExitUsage;
    }
    return Guarded(io, [&] {
        const MacroFile file = LoadMacroFile(options.file, *format);
        std::vector<const LoadedMacro*> checked;
        if (options.macro) {
            checked.push_back(&PickMacro(file, *options.macro));
        } else {
            for (const auto& loaded : file.macros) checked.push_back(&loaded);
        }
        const std::u16string name = FromUtf8(options.file);
        bool found = false;
        for (const LoadedMacro* loaded : checked) {
            const M2::TextFormLines* lines = file.format == MacroFormat::Text ? &file.lines : nullptr;
            for (const Finding& finding : CheckMacro(*loaded->macro, lines, loaded->root)) {
                found = true;
                const std::u16string where =
                    finding.line > 0 ? name + u":" + Ascii(std::to_string(finding.line)) : name + u": " + finding.path;
                io.out << ToUtf8(where) << ": " << ToUtf8(finding.message) << "\n";
            }
        }
        if (found) return kExitError;
        io.out << ToUtf8(FormatMessage(msg::kCheckedClean, {name})) << "\n";
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
