// The add-in's boxes: the run's error box and multi-page confirmation (the RunUi of a run started
// from the ribbon), and the text boxes of "Edit XML" and "Show page XML". Boxes are owned by
// OneNote's window. Runs from the ribbon have no progress window and no dialog boxes yet: a
// macro's DialogBox_Show then fails with its macro error.
//
// Test seam: when the environment variable QUILLMARK_TEST_BOXES names a file, no box is shown;
// each is appended to that file instead, as a line with its caption, a tab and its text (UTF-8,
// line breaks written as \r and \n), and answered with its default button: OK, Yes, and OK on a text box left as it was shown.
#pragma once

#include "addin/win32.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/run_ui.h"

namespace qm::addin {

class AddinUi final : public RunUi {
public:
    AddinUi();

    // The window boxes belong to; null: the desktop.
    void SetOwner(HWND owner) noexcept { owner_ = owner; }

    ProgressUi* progress() override { return nullptr; }
    DialogUi* dialogs() override { return nullptr; }
    void ShowError(std::u16string_view caption, std::u16string_view text) override;
    Confirmation Confirm(std::u16string_view caption, std::u16string_view text,
                         std::u16string_view checkBoxLabel) override;

    // A yes/no question without a check box.
    bool Ask(std::u16string_view caption, std::u16string_view text);
    // A message over a multi-line text; with editable, the text as the user left it on OK, else
    // nothing (Cancel, or a read-only box).
    std::optional<std::u16string> ShowText(std::u16string_view caption, std::u16string_view message,
                                           std::u16string_view text, bool editable);

private:
    bool Recorded(std::u16string_view caption, std::u16string_view text) const;

    HWND owner_ = nullptr;
    std::optional<std::filesystem::path> record_;
};

}  // namespace qm::addin
