#include "runtime/run_driver.h"

#include <exception>
#include <system_error>

#include "core/error.h"
#include "core/format.h"
#include "core/text.h"
#include "macros/user_folder.h"
#include "runtime/dispatch.h"
#include "runtime/interpreter.h"
#include "runtime/macro_log.h"
#include "runtime/messages.h"
#include "runtime/run_control.h"
#include "runtime/run_ui.h"
#include "runtime/strings.h"

namespace qm {
namespace {

std::filesystem::path LogPath(const RunSettings& settings) {
    if (!settings.logFile.empty()) return settings.logFile;
    std::error_code ignored;
    std::filesystem::create_directories(UserFolder(), ignored);
    return DefaultMacroLogPath();
}

std::u16string ProgressBody(const M2::Macro& macro) {
    return FormatMessage(strings::Text(strings::Id::RunningMacroBody), {macro.name});
}

// Shows the progress window for the run and hides it again however the run ends.
class ProgressScope {
public:
    ProgressScope(ProgressUi* progress, const M2::Macro& macro) : progress_(progress), macro_(macro) {
        if (progress_) Show();
    }
    ~ProgressScope() { Hide(); }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

    void Show() {
        shown_ = progress_->Show(strings::Text(strings::Id::RunningMacroTitle), ProgressBody(macro_));
        if (shown_) progress_->Repaint(0);
    }
    void Hide() {
        if (shown_) progress_->Hide();
        shown_ = false;
    }
    bool shown() const noexcept { return shown_; }
    ProgressUi* progress() const noexcept { return progress_; }

private:
    ProgressUi* progress_;
    const M2::Macro& macro_;
    bool shown_ = false;
};

}  // namespace

std::u16string MacroRunDriver::SessionKey(const M2::Macro& macro) {
    return macro.id.value.empty() ? macro.name : macro.id.value;
}

bool MacroRunDriver::MaySaveMultiplePages(const std::u16string& key) const {
    const auto found = confirmations_.find(key);
    return found != confirmations_.end() && found->second;
}

RunResult MacroRunDriver::runMacro(const M2::Macro* macro, const RunSettings& settings, RunEnvironment& environment) {
    RunResult result;
    if (!macro) return result;

    MacroLog log;
    if (settings.logging) log.Open(LogPath(settings));

    RunOptions options;
    MacroExecutionContext context(options);
    context.log = log.IsOpen() ? &log : nullptr;
    context.documents = environment.documents;

    // The object model writes into the log while the run lasts, and never after.
    struct LogAnnouncement {
        RunEnvironment& environment;
        explicit LogAnnouncement(RunEnvironment& env, LogSink* log) : environment(env) {
            if (environment.logOpened) environment.logOpened(log);
        }
        ~LogAnnouncement() {
            if (environment.logOpened) environment.logOpened(nullptr);
        }
    } announcement(environment, context.log);

    std::u16string error;
    bool failed = false;
    try {
        executeMacroRun(context, options, *macro, environment, result);
    } catch (const MacroError& e) {
        failed = true;
        error = e.message().empty() ? std::u16string(msg::kErrorWithoutText) : e.message();
    } catch (const RunCancelled&) {
        result.outcome = RunOutcome::Cancelled;
    } catch (const std::exception& e) {
        failed = true;
        error = FromUtf8(e.what());
    }
    if (failed) {
        result.outcome = RunOutcome::Failed;
        log.Line(std::u16string(msg::kErrorWhileRunning) + error);
        ui_.ShowError(strings::Text(strings::Id::Error), error);
        result.errorMessage = std::move(error);
    }
    result.variables = std::move(context.variables);
    log.Close();
    return result;
}

void MacroRunDriver::executeMacroRun(MacroExecutionContext& context, RunOptions& options, const M2::Macro& macro,
                                     RunEnvironment& environment, RunResult& result) {
    ProgressScope progress(ui_.progress(), macro);
    options.progressInUse = progress.shown();
    if (progress.progress()) {
        context.progress = progress.progress();
        context.cancelFlag = &progress.progress()->cancelled();
    }
    if (context.log) context.log->Line(FormatMessage(msg::kLogRunningMacro, {macro.name}));

    RuntimeServices services{environment.objects, ui_.dialogs(), environment.dates, macro.name};
    Interpreter interpreter(context, services, macro);
    try {
        interpreter.executeMacro();
        result.outcome = RunOutcome::Finished;
    } catch (const Macro::ExitException& exit) {
        result.outcome = RunOutcome::Exited;
        if (context.log) {
            context.log->Line(std::u16string(msg::kLogExitMacro) +
                              std::u16string(exit.saveChanges() ? msg::kLogExitSaving : msg::kLogExitNotSaving));
        }
        if (!exit.saveChanges()) return;
    } catch (const Macro::BreakException& stray) {
        throw MacroError(Interpreter::StrayBreakMessage(stray.expression()));
    } catch (const Macro::ContinueException& stray) {
        throw MacroError(Interpreter::StrayContinueMessage(stray.expression()));
    }

    const std::size_t modified = context.documents ? context.documents->FinalizeModified() : 0;
    result.pagesModified = modified;
    if (context.log) {
        std::u16string line = IntegerText(static_cast<std::int64_t>(modified));
        line += msg::kLogPagesModified;
        if (modified != 0) line += msg::kLogPagesWillBeSaved;
        context.log->Line(line);
    }

    if (modified >= 2 && !MaySaveMultiplePages(SessionKey(macro))) {
        const bool wasShown = progress.shown();
        progress.Hide();
        const Confirmation answer =
            ui_.Confirm(macro.name, FormatMessage(strings::Text(strings::Id::ConfirmMultiplePages), {macro.name}),
                        strings::Text(strings::Id::DoNotAskAgain));
        if (!answer.accepted) {
            if (context.log) context.log->Line(msg::kLogUserRefusedSaving);
            result.outcome = RunOutcome::Refused;
            return;
        }
        if (answer.checkBoxTicked) confirmations_[SessionKey(macro)] = true;
        if (wasShown) progress.Show();
    }
    if (modified != 0) {
        context.documents->SaveModified();
        result.pagesSaved = true;
    }
}

}  // namespace qm
