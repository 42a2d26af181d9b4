// The run driver: takes one macro from the request to run it to the end of its run. It opens the
// macro log, shows the progress window, runs the statements, handles what ends a run (ExitMacro, a
// stray Break or Continue, a macro error, cancellation) and finally writes the modified pages
// back, asking the user first when more than one page would be written.
//
// Choices made here:
// - The session table of confirmations is keyed by the macro's identifier, or by its name when it
//   has none (a macro read from a file). It lives as long as the driver: one add-in session, one
//   command-line run.
// - A refused multi-page confirmation ends the run as RunOutcome::Refused: nothing is written.
// - A run-ending error that is no macro error (a failure of the OneNote layer, a file) is reported
//   like one, with its own text.
// - A cancelled run is silent: nothing is added to the log after the last statement begun, no box
//   is shown, no page is written.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "core/evaluator.h"
#include "macros/m2_schema.h"
#include "runtime/execution_context.h"

namespace qm {

class DateFormatter;
class MacroLog;
class ObjectModel;
class RunUi;

struct RunSettings {
    bool logging = false;          // the add-in's macro logging setting
    std::filesystem::path logFile;  // empty: "macroLog.txt" in the per-user folder
};

// What a run reaches outside the macro language. Without a notebook both OneNote pointers are
// null: the object-model functions fail with a macro error and no page is ever saved.
struct RunEnvironment {
    ObjectModel* objects = nullptr;
    RunDocuments* documents = nullptr;
    const DateFormatter* dates = nullptr;  // null: the user's default locale
    // Told the run's macro log once it is open (the object model writes its query and navigation
    // lines there), and null again when the run has ended. Unset: nobody needs to know.
    std::function<void(LogSink*)> logOpened;
};

enum class RunOutcome {
    NotFound,   // no such macro: nothing happened
    Finished,   // ran to its end (or to a Return); pages saved
    Exited,     // ended by ExitMacro; pages saved only when it asked for that
    Refused,    // the user did not allow saving multiple pages; nothing written
    Failed,     // a macro error; nothing written
    Cancelled,  // the user cancelled; nothing written
};

struct RunResult {
    RunOutcome outcome = RunOutcome::NotFound;
    std::u16string errorMessage;  // Failed: the message as reported to the user
    std::size_t pagesModified = 0;
    bool pagesSaved = false;
    MacroScope variables;  // the macro's variables as the run left them
};

class MacroRunDriver {
public:
    explicit MacroRunDriver(RunUi& ui) : ui_(ui) {}

    // Runs the macro found by the caller (in the macro store, or read from a file); a null macro
    // is an unknown identifier and does nothing. Errors are logged and shown in the error box;
    // they never leave this function.
    RunResult runMacro(const M2::Macro* macro, const RunSettings& settings, RunEnvironment& environment);

    // Whether the macro with this key may save multiple pages without asking, this session.
    bool MaySaveMultiplePages(const std::u16string& key) const;
    static std::u16string SessionKey(const M2::Macro& macro);

private:
    // The run proper: progress, statements, counting, confirming and saving the pages.
    void executeMacroRun(MacroExecutionContext& context, RunOptions& options, const M2::Macro& macro,
                         RunEnvironment& environment, RunResult& result);

    RunUi& ui_;
    std::map<std::u16string, bool> confirmations_;
};

}  // namespace qm
