// The multi-page confirmation: a question with a check box, which a message box cannot carry.
#include <algorithm>

#include "addin/boxes_win32.h"
#include "addin/dialog_template_win32.h"
#include "addin/messages.h"

namespace qm::addin {
namespace {

// The layout, in dialog units.
constexpr int kMargin = 7;
constexpr int kIconSize = 21;
constexpr int kTextX = kMargin + kIconSize + 7;
constexpr int kTextWidth = 230;
constexpr int kGap = 8;
constexpr int kCheckBoxMark = 12;
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kButtonGap = 4;
constexpr int kMaxTextHeight = 160;
constexpr int kIconId = 102;

struct ConfirmState {
    bool ticked = false;
};

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            SendDlgItemMessageW(dialog, kIconId, STM_SETICON, reinterpret_cast<WPARAM>(LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_WARNING))), 0);
            return TRUE;
        case WM_COMMAND: {
            const int command = LOWORD(wParam);
            if (command != IDYES && command != IDNO && command != IDCANCEL) break;
            auto* state = reinterpret_cast<ConfirmState*>(GetWindowLongPtrW(dialog, DWLP_USER));
            state->ticked = IsDlgButtonChecked(dialog, kConfirmCheckBoxId) == BST_CHECKED;
            EndDialog(dialog, command);
            return TRUE;
        }
        default: break;
    }
    return FALSE;
}

}  // namespace

Confirmation ShowConfirmation(HWND owner, std::u16string_view caption, std::u16string_view text,
                              std::u16string_view checkBoxLabel) {
    const DialogFont font;
    const int textHeight = std::clamp<int>(font.Measure(text, kTextWidth).cy, kIconSize, kMaxTextHeight);
    const int checkTop = kMargin + textHeight + kGap;
    const int checkHeight = std::max<int>(10, font.Measure(checkBoxLabel, kTextWidth - kCheckBoxMark, true).cy);
    const int buttonTop = checkTop + checkHeight + kGap;
    const int right = kTextX + kTextWidth;

    DialogTemplate dialog(caption, WS_SYSMENU);
    dialog.Item(DialogClass::Static, kIconId, SS_ICON, kMargin, kMargin, kIconSize, kIconSize);
    dialog.Item(DialogClass::Static, kConfirmTextId, SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, kTextX, kMargin,
                kTextWidth, textHeight, text);
    dialog.Item(DialogClass::Button, kConfirmCheckBoxId, BS_AUTOCHECKBOX | BS_MULTILINE | BS_TOP | WS_TABSTOP, kTextX,
                checkTop, kTextWidth, checkHeight, checkBoxLabel);
    dialog.Item(DialogClass::Button, IDYES, BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP,
                right - 2 * kButtonWidth - kButtonGap, buttonTop, kButtonWidth, kButtonHeight, msg::kYes);
    dialog.Item(DialogClass::Button, IDNO, BS_PUSHBUTTON | WS_TABSTOP, right - kButtonWidth, buttonTop, kButtonWidth,
                kButtonHeight, msg::kNo);
    dialog.SetSize(right + kMargin, buttonTop + kButtonHeight + kMargin);

    ConfirmState state;
    const INT_PTR answer = DialogBoxIndirectParamW(ThisModule(), dialog.get(), owner, &Proc,
                                                   reinterpret_cast<LPARAM>(&state));
    if (answer != IDYES) return Confirmation{false, false};
    return Confirmation{true, state.ticked};
}

}  // namespace qm::addin
