// run and functions: running a macro from the command line, and the function reference.
//
//   quillmark run MACRO [--notebook DIR] [--log FILE] [--vars] [--yes] [--answer NAME=VALUE ...]
//                 [--macro NAME|ID]
//       MACRO is a .qm file (text form), a .xml file holding one macro or a macro list (--macro
//       picks one of a list), or the id or name of a macro in the user's macro list. The run goes
//       as in the add-in: the progress line on standard error (on a terminal), Ctrl-C as Cancel,
//       dialog boxes asked on the terminal or answered by --answer, the multi-page confirmation
//       asked on the terminal or accepted by --yes. --log FILE writes the macro log to FILE;
//       without it the macro list's logging setting decides and the log goes to the per-user
//       folder. --vars prints the macro's variables after the run, sorted by name.
//       The run works on the notebook folder DIR (see onenote/notebook_folder.h), or without
//       --notebook on the working copy of the sample notebook in the per-user folder, which is
//       made (copied from the sample) only when the macro first asks for a notebook object.
//       Modified pages are written back to the folder at the end of the run.
//       Exit codes: 0 finished (ExitMacro included), 1 macro error or a macro that cannot be
//       loaded, 2 usage, 3 cancelled or saving refused (nothing was written).
//   quillmark functions [NAME]
//       Without NAME one line per built-in function (signature and return type); with NAME its
//       whole reference: signature, return type, description and parameters.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/macro_file.h"
#include "cli/messages.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/messages.h"
#include "macros/text_form.h"
#include "onenote/notebook_folder.h"
#include "onenote/sample_notebook.h"
#include "onenote/session.h"
#include "runtime/catalogue.h"
#include "runtime/execution_context.h"
#include "runtime/object_model.h"
#include "runtime/run_driver.h"
#include "runtime/strings.h"
#include "ui/terminal.h"
#include "ui/terminal_ui.h"
#include "xml/file_io.h"

namespace qm::cli {
namespace {

struct RunCommandOptions {
    std::string macro;
    std::optional<std::string> log;
    bool vars = false;
    bool yes = false;
    std::vector<std::string> answers;
    std::optional<std::string> select;
    std::optional<std::string> notebook;
};

// The macro to run, and the file it came from (which keeps its list and text form alive).
struct MacroToRun {
    std::optional<MacroFile> file;
    std::shared_ptr<M2::Macro> macro;
};

MacroToRun LoadFile(const std::string& name, MacroFormat format, const std::optional<std::string>& selector) {
    MacroToRun loaded{LoadMacroFile(name, format), nullptr};
    loaded.macro = SingleMacro(*loaded.file, selector).macro;
    if (format == MacroFormat::Text && loaded.macro->name.empty()) {
        // A text without "#name" is named after its file, for the progress line, log and boxes.
        const std::u8string stem = PathArg(name).stem().u8string();
        loaded.macro->name = FromUtf8(std::string(stem.begin(), stem.end()));
    }
    return loaded;
}

MacroToRun LoadFromStore(macros::MacroStore& store, const std::string& idOrName) {
    store.ReloadIfChanged();
    std::shared_ptr<M2::Macro> macro = store.Find(FromUtf8(idOrName));
    if (!macro) {
        throw CommandFailure{FormatMessage(msg::kNotInStore, {FormatMessage(macros::msg::kMacroNotFound, {FromUtf8(idOrName)}),
                                                         macros::PathText(store.MacrosPath())})};
    }
    return {std::nullopt, macro};
}

// The macro list's logging setting; a list that does not read turns logging off.
bool StoreLogging(macros::MacroStore& store) {
    try {
        return *store.GetMacros().loggingEnabled;
    } catch (const macros::StoreError&) {
        return false;
    }
}

std::map<std::u16string, std::u16string> ParseAnswers(const std::vector<std::string>& answers) {
    std::map<std::u16string, std::u16string> parsed;
    for (const std::string& answer : answers) {
        const std::size_t equals = answer.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw CommandFailure{FormatMessage(msg::kBadAnswer, {FromUtf8(answer)}), kExitUsage};
        }
        parsed[FromUtf8(answer.substr(0, equals))] = FromUtf8(answer.substr(equals + 1));
    }
    return parsed;
}

// What a run works on besides the macro: a notebook folder through the OneNote layer's session,
// which is the run's object model and page table.
class RunWorkspace {
public:
    explicit RunWorkspace(onenote::OneNoteApi& api) : session_(api) {}
    ObjectModel* objects() { return &session_; }
    RunDocuments* documents() { return &session_; }
    void AttachLog(LogSink* log) { session_.SetLog(log); }

private:
    onenote::Session session_;
};

// OneNote over a notebook folder that is opened on the first call, so that a macro that never
// asks for a notebook object neither needs nor makes the working copy.
class LazyNotebookFolder final : public onenote::OneNoteApi {
public:
    std::u16string GetHierarchy(std::u16string_view id, onenote::HierarchyScope scope) override {
        return Folder().GetHierarchy(id, scope);
    }
    void UpdateHierarchy(std::u16string_view xml) override { Folder().UpdateHierarchy(xml); }
    std::u16string GetHierarchyParent(std::u16string_view id) override { return Folder().GetHierarchyParent(id); }
    std::u16string GetPageContent(std::u16string_view id) override { return Folder().GetPageContent(id); }
    void UpdatePageContent(std::u16string_view xml, std::optional<xml::SystemTime> expected) override {
        Folder().UpdatePageContent(xml, expected);
    }
    std::u16string GetHyperlinkToObject(std::u16string_view id, std::u16string_view objectId) override {
        return Folder().GetHyperlinkToObject(id, objectId);
    }
    std::u16string CreateNewPage(std::u16string_view sectionId) override { return Folder().CreateNewPage(sectionId); }
    void Flush() {
        if (folder_) folder_->Flush();
    }

private:
    onenote::NotebookFolder& Folder() {
        if (!folder_) folder_ = std::make_unique<onenote::NotebookFolder>(onenote::WorkingNotebook());
        return *folder_;
    }
    std::unique_ptr<onenote::NotebookFolder> folder_;
};

// Writes what the run changed in the folder's hierarchy now, so that a failure is reported.
void FlushNotebook(onenote::OneNoteApi& notebook) {
    if (auto* folder = dynamic_cast<onenote::NotebookFolder*>(&notebook)) folder->Flush();
    if (auto* lazy = dynamic_cast<LazyNotebookFolder*>(&notebook)) lazy->Flush();
}

// The folder --notebook names (opened now: a folder that is none fails the command before the
// run), or the working copy, opened when first needed.
std::unique_ptr<onenote::OneNoteApi> OpenNotebook(const RunCommandOptions& options) {
    if (!options.notebook) return std::make_unique<LazyNotebookFolder>();
    try {
        return std::make_unique<onenote::NotebookFolder>(PathArg(*options.notebook));
    } catch (const onenote::FolderError& e) {
        throw CommandFailure{e.message()};
    }
}

void PrintVariables(const MacroScope& scope, std::ostream& out) {
    const MacroArray& variables = scope.variables();
    for (std::size_t index : variables.KeyOrder()) {
        const MacroArray::Element& element = variables.elements()[index];
        const std::string line = ToUtf8(FormatMessage(msg::kVariableLine, {element.key, element.value->Describe()}));
        // Array descriptions break lines as the log does; the terminal takes plain line feeds.
        std::string text;
        text.reserve(line.size() + 1);
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\r' && i + 1 < line.size() && line[i + 1] == '\n') continue;
            text += line[i];
        }
        out << text << "\n";
    }
}

int ExitCode(RunOutcome outcome) {
    switch (outcome) {
        case RunOutcome::Finished:
        case RunOutcome::Exited: return kExitOk;
        case RunOutcome::Cancelled:
        case RunOutcome::Refused: return kExitCancelled;
        case RunOutcome::NotFound:
        case RunOutcome::Failed: break;
    }
    return kExitError;
}

int RunMacroCommand(const RunCommandOptions& options, Io& io) {
    try {
        const std::map<std::u16string, std::u16string> answers = ParseAnswers(options.answers);
        macros::MacroStore store;
        const std::optional<MacroFormat> format = MacroFormatOf(options.macro);
        MacroToRun loaded = format ? LoadFile(options.macro, *format, options.select)
                                   : LoadFromStore(store, options.macro);

        RunSettings settings;
        if (options.log) {
            settings.logging = true;
            settings.logFile = PathArg(*options.log);
        } else {
            settings.logging = StoreLogging(store);
        }

        // Only the process's own streams can be a terminal to draw on or to ask.
        const bool ownStreams = &io.err == &std::cerr;
        ui::TerminalOptions terminal;
        terminal.interactive = ownStreams && ui::platform::StdinIsTerminal();
        terminal.showProgress = ownStreams && ui::platform::StderrIsTerminal();
        terminal.assumeYes = options.yes;
        terminal.answers = answers;
        ui::TerminalUi ui(std::move(terminal), std::cin, io.err);
        ui::platform::InterruptScope interrupts(ui.cancelFlag(),
                                                "\n" + ToUtf8(strings::Text(strings::Id::Cancelled)) + "\n");

        const std::unique_ptr<onenote::OneNoteApi> notebook = OpenNotebook(options);
        RunWorkspace workspace(*notebook);
        RunEnvironment environment;
        environment.objects = workspace.objects();
        environment.documents = workspace.documents();
        environment.logOpened = [&workspace](LogSink* log) { workspace.AttachLog(log); };
        MacroRunDriver driver(ui);
        RunResult result = driver.runMacro(loaded.macro.get(), settings, environment);
        FlushNotebook(*notebook);
        io.err.flush();
        if (options.vars) PrintVariables(result.variables, io.out);
        return ExitCode(result.outcome);
    } catch (const CommandFailure& e) {
        io.err << ToUtf8(e.text) << "\n";
        return e.code;
    } catch (const M2::TextFormError& e) {
        io.err << ToUtf8(e.FullText()) << "\n";
    } catch (const io::FileError& e) {
        io.err << e.what() << "\n";
    } catch (const macros::StoreError& e) {
        io.err << ToUtf8(e.message()) << "\n";
    }
    return kExitError;
}

std::u16string Signature(const FunctionInfo& info) {
    std::u16string parameters;
    for (const ParameterInfo& parameter : info.parameters) {
        if (!parameters.empty()) parameters += u", ";
        parameters += parameter.name;
    }
    return FormatMessage(msg::kSignature, {info.name, parameters, info.returnType});
}

int PrintFunctions(const std::optional<std::string>& name, Io& io) {
    if (!name) {
        for (const auto& [key, info] : getFunctionCatalogue()) io.out << ToUtf8(Signature(info)) << "\n";
        return kExitOk;
    }
    const FunctionInfo* info = FindBuiltin(FromUtf8(*name));
    if (!info) {
        io.err << ToUtf8(FormatMessage(qm::msg::kUnknownFunction, {FromUtf8(*name)})) << "\n";
        return kExitError;
    }
    io.out << ToUtf8(Signature(*info)) << "\n" << ToUtf8(info->description) << "\n";
    if (!info->parameters.empty()) {
        io.out << ToUtf8(msg::kParametersHeading) << "\n";
        for (const ParameterInfo& parameter : info->parameters) {
            io.out << ToUtf8(FormatMessage(msg::kParameterLine, {parameter.name, parameter.type, parameter.description}))
                   << "\n";
        }
    }
    return kExitOk;
}

}  // namespace

void RegisterRunCommands(CLI::App& app, CommandContext& context) {
    auto options = std::make_shared<RunCommandOptions>();
    CLI::App* run = app.add_subcommand("run", "Run a macro: a .qm or .xml file, or the id or name of a stored macro");
    run->add_option("MACRO", options->macro, "The macro file, or a stored macro's id or name")->required();
    run->add_option("--log", options->log, "Write the macro log to FILE for this run")->option_text("FILE");
    run->add_flag("--vars", options->vars, "Print the macro's variables after the run, sorted by name");
    run->add_flag("--yes", options->yes, "Allow saving multiple pages without asking");
    run->add_option("--answer", options->answers, "Answer a dialog box control: NAME=VALUE (repeatable)")
        ->allow_extra_args(false);
    run->add_option("--macro", options->select, "The macro of a macro list file to run, by id or name");
    run->add_option("--notebook", options->notebook,
                    "The notebook folder to run on (default: the working copy of the sample notebook)")
        ->option_text("DIR");
    run->callback([&context, options] {
        context.action = [&context, options] { return RunMacroCommand(*options, context.io); };
    });

    auto name = std::make_shared<std::optional<std::string>>();
    CLI::App* functions = app.add_subcommand("functions", "Show the reference of the built-in functions");
    functions->add_option("NAME", *name, "A function's name: show its whole reference");
    functions->callback([&context, name] {
        context.action = [&context, name] { return PrintFunctions(*name, context.io); };
    });
}

}  // namespace qm::cli
