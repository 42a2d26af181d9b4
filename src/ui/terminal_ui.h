// The user interface of a macro run on a terminal: the progress window is one line on standard
// error that updates in place, Ctrl-C is the Cancel button, the error box and the confirmation are
// lines on standard error, and a dialog box asks for each of its controls in turn.
//
// Without a terminal to ask, a run still gets answers: the confirmation is refused unless
// `assumeYes`, and a dialog box takes its values from `answers` (control name to text). A dialog
// with a named control that has no answer is cancelled, with a message saying which answer is
// missing; the run then ends as cancelled, exactly as if the user had pressed Cancel.
//
// Choices made here:
// - Given answers are used even on a terminal; only the controls without one are asked for.
// - A text box shows its initial value in brackets; an empty reply keeps it. A text box that may
//   not be empty asks again while the reply is empty.
// - A check box takes y/yes/true/1 and n/no/false/0 (any case); an empty reply keeps it.
// - A drop-down lists its values numbered from 1 and takes a number; an empty reply keeps the
//   initial value when it is one of the values, else the first value (an empty list gives "").
//   A given answer must be one of the values.
// - The end of input or an interrupt while asking cancels the dialog.
// - The progress line comes back after a dialog at the next repaint.
// - The check box of the confirmation is not asked: a command-line session runs one macro.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "runtime/dialog.h"
#include "runtime/run_ui.h"

namespace qm::ui {

struct TerminalOptions {
    bool interactive = false;   // standard input is a terminal: questions are asked
    bool showProgress = false;  // standard error is a terminal: the progress line is drawn
    bool assumeYes = false;     // accept the multi-page confirmation without asking
    std::map<std::u16string, std::u16string> answers;  // dialog answers by control name
};

class TerminalUi final : public RunUi, public ProgressUi, public DialogUi {
public:
    TerminalUi(TerminalOptions options, std::istream& in, std::ostream& err);

    // The flag Ctrl-C sets (through platform::InterruptScope).
    std::atomic<bool>& cancelFlag() noexcept { return cancelled_; }

    // RunUi
    ProgressUi* progress() override { return this; }
    DialogUi* dialogs() override { return this; }
    void ShowError(std::u16string_view caption, std::u16string_view text) override;
    Confirmation Confirm(std::u16string_view caption, std::u16string_view text,
                         std::u16string_view checkBoxLabel) override;

    // ProgressUi
    bool Show(std::u16string_view title, std::u16string_view body) override;
    void Hide() override;
    void Repaint(std::uint64_t statementsRun) override;
    const std::atomic<bool>& cancelled() const override { return cancelled_; }

    // DialogUi
    std::optional<std::vector<std::u16string>> ShowDialog(std::u16string_view caption,
                                                          const DialogModel& model) override;

private:
    void ClearLine();
    void Print(std::u16string_view text);
    std::optional<std::u16string> ReadLine();
    std::optional<std::u16string> AskTextBox(const DialogControl& control);
    std::optional<std::u16string> AskCheckBox(const DialogControl& control);
    std::optional<std::u16string> AskDropDown(const DialogControl& control);
    std::optional<std::u16string> GivenAnswer(const DialogControl& control);

    TerminalOptions options_;
    std::istream& in_;
    std::ostream& err_;
    std::atomic<bool> cancelled_{false};
    bool active_ = false;  // between Show and Hide
    bool lineDrawn_ = false;
    std::u16string body_;
    std::uint64_t statements_ = 0;
    std::chrono::steady_clock::time_point started_{};
};

}  // namespace qm::ui
