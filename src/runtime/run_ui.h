// The seams between a macro run and the user interface that hosts it: the progress window, the
// error box and the multi-page confirmation. The add-in implements them with windows, the
// command-line tool on the terminal, tests with fakes. Dialog boxes go through DialogUi
// (runtime/dialog.h).
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace qm {

class DialogUi;

// The progress window of a run: shown while the macro runs, repainted by the interpreter at most
// every 50 ms, with a Cancel that the interpreter honours before its next statement.
class ProgressUi {
public:
    virtual ~ProgressUi() = default;
    // Shows the window with its title and body text; returns whether it is actually on screen
    // (a terminal that is no terminal shows nothing, and then the interpreter never repaints).
    virtual bool Show(std::u16string_view title, std::u16string_view body) = 0;
    virtual void Hide() = 0;
    // statementsRun: the statements begun since the run started.
    virtual void Repaint(std::uint64_t statementsRun) = 0;
    // Set when the user asked to cancel; it may be set from a signal handler or another thread,
    // hence atomic. Read before every statement.
    virtual const std::atomic<bool>& cancelled() const = 0;
};

struct Confirmation {
    bool accepted = false;
    bool checkBoxTicked = false;
};

class RunUi {
public:
    virtual ~RunUi() = default;
    // Null when the host has no progress window (then nothing can cancel a run).
    virtual ProgressUi* progress() = 0;
    // Null when the host cannot show dialog boxes (DialogBox_Show then fails with a macro error).
    virtual DialogUi* dialogs() = 0;
    virtual void ShowError(std::u16string_view caption, std::u16string_view text) = 0;
    // A yes/no question with one check box; returns the answer and the check box's state.
    virtual Confirmation Confirm(std::u16string_view caption, std::u16string_view text,
                                 std::u16string_view checkBoxLabel) = 0;
};

}  // namespace qm
