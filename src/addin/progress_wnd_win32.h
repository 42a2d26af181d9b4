// The progress window of a macro run started from the ribbon (ProgressWnd): the title, the body
// text and a Cancel button, owned by OneNote's window. One instance lives as long as the add-in's
// session and serves one run after the other.
//
// The window is shown and hidden by the private messages WM_USER+3 and WM_USER+4, posted to it,
// and it lives on OneNote's thread, which the run keeps busy: every repaint of the interpreter (at
// most every 50 ms) dispatches the messages waiting for this window and its controls, and only
// those, so that it paints and Cancel can be pressed while no other window of OneNote's reacts and
// no ribbon command can start a second run inside the first. Cancel (the button, Esc, Alt+F4) sets
// the cancel flag, which the interpreter reads before its next statement, puts string 66 in the
// body and disables the button.
#pragma once

#include "addin/win32.h"

#include <atomic>
#include <string>

#include "runtime/run_ui.h"

namespace qm::addin {

class ProgressWnd final : public ProgressUi {
public:
    static constexpr UINT kShowMessage = WM_USER + 3;
    static constexpr UINT kHideMessage = WM_USER + 4;
    static constexpr int kBodyId = 100;  // the Cancel button is IDCANCEL

    ProgressWnd() = default;
    ~ProgressWnd() override;
    ProgressWnd(const ProgressWnd&) = delete;
    ProgressWnd& operator=(const ProgressWnd&) = delete;

    // The window the progress window belongs to; it takes effect at the next Show.
    void SetOwner(HWND owner) noexcept { owner_ = owner; }
    HWND window() const noexcept { return window_; }
    bool shown() const noexcept { return shown_; }

    // A new window for the texts, laid out around them, with the cancel flag cleared; false when
    // no window can be made.
    bool Show(std::u16string_view title, std::u16string_view body) override;
    void Hide() override;
    void Repaint(std::uint64_t statementsRun) override;
    const std::atomic<bool>& cancelled() const override { return cancelled_; }

    // Shows the window again as it was (after a dialog box of the run).
    void Reveal();

private:
    static INT_PTR CALLBACK Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Cancel();
    void Pump();
    void Destroy();

    HWND owner_ = nullptr;
    HWND window_ = nullptr;
    std::atomic<bool> cancelled_{false};
    bool shown_ = false;
};

}  // namespace qm::addin
