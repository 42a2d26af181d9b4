// The user interface of the add-in: what a run started from the ribbon shows (the progress window,
// the macro's dialog boxes, the Error box and the multi-page confirmation), and the text boxes of
// "Edit XML" and "Show page XML". Everything is owned by OneNote's window (OneNoteWindow).
//
// Test seam: when the environment variable QUILLMARK_TEST_BOXES names a file, no window is shown.
// Each box is appended to that file instead, as a line with its caption, a tab and its text (UTF-8,
// line breaks written as \r and \n), and answered with its default button: OK, Yes, and OK on a
// text box left as it was shown. A macro's dialog box is written as its caption, its message and
// then, for each control, its label, "=" and the value it starts with, all separated by tabs; it is
// answered with OK on those values, or with Cancel when OK cannot be pressed on them (a text box
// that may not be empty is empty). The progress window does not appear.
#pragma once

#include "addin/win32.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "addin/progress_wnd_win32.h"
#include "runtime/dialog.h"
#include "runtime/run_ui.h"

namespace qm::addin {

class AddinUi final : public RunUi, public DialogUi {
public:
    AddinUi();

    // The window everything belongs to; null: the desktop.
    void SetOwner(HWND owner) noexcept;

    // RunUi
    ProgressUi* progress() override { return record_ ? nullptr : &progress_; }
    DialogUi* dialogs() override { return this; }
    void ShowError(std::u16string_view caption, std::u16string_view text) override;
    Confirmation Confirm(std::u16string_view caption, std::u16string_view text,
                         std::u16string_view checkBoxLabel) override;

    // DialogUi: the progress window steps aside while the dialog is up and comes back after OK.
    std::optional<std::vector<std::u16string>> ShowDialog(std::u16string_view caption,
                                                          const DialogModel& model) override;

    // A yes/no question without a check box.
    bool Ask(std::u16string_view caption, std::u16string_view text);
    // A message over a multi-line text; with editable, the text as the user left it on OK, else
    // nothing (Cancel, or a read-only box).
    std::optional<std::u16string> ShowText(std::u16string_view caption, std::u16string_view message,
                                           std::u16string_view text, bool editable);

private:
    bool Recorded(std::u16string_view caption, std::u16string_view text) const;

    HWND owner_ = nullptr;
    ProgressWnd progress_;
    std::optional<std::filesystem::path> record_;
};

// OneNote's main window, asked of OneNote's Application by name (Windows.CurrentWindow's
// WindowHandle); when OneNote does not tell it, the top-level window in the foreground, which is
// OneNote's while the user works in it. Null when there is neither.
HWND OneNoteWindow(IDispatch* application);

}  // namespace qm::addin
