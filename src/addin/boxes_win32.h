// The add-in's modal boxes, each a dialog built in memory and owned by OneNote's window: the
// dialog boxes macros build (DialogBox_Show), the multi-page confirmation with its check box, and
// the text box of "Edit XML" and "Show page XML".
#pragma once

#include "addin/win32.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/dialog.h"
#include "runtime/run_ui.h"

namespace qm::addin {

// --- a macro's dialog box -----------------------------------------------------------------------
//
// The message on top; then the controls in the order added, a row each: a text box or a drop-down
// list with its label on the left, a check box with its label beside the box, a label across the
// whole width; OK and Cancel at the bottom right. Columns are as wide as their longest text within
// limits, and long texts wrap. A drop-down list selects its initial value when that is one of its
// values, else its first value.
inline constexpr int kDialogMessageId = 100;
inline constexpr int kDialogControlId = 1000;  // control i of the model: kDialogControlId + i
inline constexpr int kDialogLabelId = 3000;    // its label on the left: kDialogLabelId + i
inline constexpr std::size_t kMaxDialogControls = 1000;

// Shows the dialog modally; the results as DialogUi::ShowDialog returns them. Raises a macro error
// when the dialog cannot be made.
std::optional<std::vector<std::u16string>> ShowMacroDialog(HWND owner, std::u16string_view caption,
                                                           const DialogModel& model);

// The values the controls start with, one per control as ShowMacroDialog returns them.
std::vector<std::u16string> InitialDialogValues(const DialogModel& model);
// Whether OK can be pressed on these values: no text box that may not be empty is empty.
bool DialogCanClose(const DialogModel& model, const std::vector<std::u16string>& values);

// --- the multi-page confirmation ----------------------------------------------------------------
//
// A warning icon, the question, the check box, and Yes and No; closing the box is No.
inline constexpr int kConfirmTextId = 100;
inline constexpr int kConfirmCheckBoxId = 101;

Confirmation ShowConfirmation(HWND owner, std::u16string_view caption, std::u16string_view text,
                              std::u16string_view checkBoxLabel);

// --- the text box -------------------------------------------------------------------------------
//
// A message over a multi-line text; with editable, the text as the user left it on OK, else
// nothing (Cancel, or a read-only box).
std::optional<std::u16string> ShowTextBox(HWND owner, std::u16string_view caption, std::u16string_view message,
                                          std::u16string_view text, bool editable);

}  // namespace qm::addin
