// Runs macros written in the text form the way the add-in runs them: through the interpreter
// alone, or through the whole run driver with a user interface and pages that the test controls.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/error.h"
#include "core/text.h"
#include "macros/text_form.h"
#include "runtime/dialog.h"
#include "runtime/dispatch.h"
#include "runtime/execution_context.h"
#include "runtime/interpreter.h"
#include "runtime/run_control.h"
#include "runtime/run_ui.h"

namespace qm::test {

inline std::shared_ptr<M2::Macro> ReadMacro(std::u16string_view text, std::string_view fileName = "test.qm") {
    return M2::ReadTextForm(text, fileName);
}

class FakeProgress final : public ProgressUi {
public:
    bool visible = true;  // what Show answers
    int shows = 0;
    int hides = 0;
    int repaints = 0;
    std::atomic<bool> cancel{false};

    bool Show(std::u16string_view, std::u16string_view) override {
        ++shows;
        return visible;
    }
    void Hide() override { ++hides; }
    void Repaint(std::uint64_t) override { ++repaints; }
    const std::atomic<bool>& cancelled() const override { return cancel; }
};

// Answers each dialog from a table of control name to result text; a dialog with a named control
// missing from the table is cancelled.
class FakeDialogs final : public DialogUi {
public:
    std::map<std::u16string, std::u16string> answers;
    int shown = 0;

    std::optional<std::vector<std::u16string>> ShowDialog(std::u16string_view, const DialogModel& model) override {
        ++shown;
        std::vector<std::u16string> results;
        for (const DialogControl& control : model.controls) {
            if (control.kind == DialogControlKind::Label) {
                results.emplace_back();
                continue;
            }
            auto found = answers.find(control.name);
            if (found == answers.end()) return std::nullopt;
            results.push_back(found->second);
        }
        return results;
    }
};

class FakeUi final : public RunUi {
public:
    FakeProgress progressWindow;
    FakeDialogs dialogBoxes;
    bool hasProgress = true;
    std::vector<std::u16string> errors;  // texts of the error boxes shown
    std::vector<std::u16string> questions;
    Confirmation answer{true, false};

    ProgressUi* progress() override { return hasProgress ? &progressWindow : nullptr; }
    DialogUi* dialogs() override { return &dialogBoxes; }
    void ShowError(std::u16string_view caption, std::u16string_view text) override {
        errors.push_back(std::u16string(caption) + u": " + std::u16string(text));
    }
    Confirmation Confirm(std::u16string_view caption, std::u16string_view text, std::u16string_view check) override {
        questions.push_back(std::u16string(caption) + u"|" + std::u16string(text) + u"|" + std::u16string(check));
        return answer;
    }
};

// The statements of one macro run by the interpreter alone, with the context exposed.
struct InterpreterRun {
    std::shared_ptr<M2::Macro> macro;
    RunOptions options;
    MacroExecutionContext context{options};
    FakeProgress progress;
    RuntimeServices services;

    explicit InterpreterRun(std::u16string_view text) : macro(ReadMacro(text)) {
        context.progress = &progress;
        context.cancelFlag = &progress.cancelled();
    }

    // Runs the macro; the macro error's message, or nothing when it ran to its end.
    std::optional<std::u16string> Run() {
        Interpreter interpreter(context, services, *macro);
        try {
            interpreter.executeMacro();
        } catch (const MacroError& e) {
            return e.message();
        }
        return std::nullopt;
    }

    std::u16string Var(std::u16string_view name) { return context.variables.Variable(name).Describe(); }
};

}  // namespace qm::test
