// The text box of "Edit XML" and "Show page XML": a message over a large multi-line text.
#include "addin/boxes_win32.h"
#include "addin/dialog_template_win32.h"
#include "addin/messages.h"

namespace qm::addin {
namespace {

constexpr WORD kMessageId = 100;
constexpr WORD kTextId = 101;

struct TextBoxState {
    std::u16string message;
    std::u16string text;  // with "\r\n" line breaks, as the edit control wants them
    bool editable = false;
};

std::u16string WithCrLf(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size() + text.size() / 32);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) out += u'\r';
        out += text[i];
    }
    return out;
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: {
            auto* state = reinterpret_cast<TextBoxState*>(lParam);
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            SetDlgItemTextW(dialog, kMessageId, WideText(state->message).c_str());
            SetDlgItemTextW(dialog, kTextId, WideText(state->text).c_str());
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) {
                auto* state = reinterpret_cast<TextBoxState*>(GetWindowLongPtrW(dialog, DWLP_USER));
                if (state->editable) state->text = WindowText(GetDlgItem(dialog, kTextId));
                EndDialog(dialog, IDOK);
                return TRUE;
            }
            if (LOWORD(wParam) == IDCANCEL) {
                EndDialog(dialog, IDCANCEL);
                return TRUE;
            }
            break;
        default: break;
    }
    return FALSE;
}

}  // namespace

std::optional<std::u16string> ShowTextBox(HWND owner, std::u16string_view caption, std::u16string_view message,
                                          std::u16string_view text, bool editable) {
    constexpr int kWidth = 360, kHeight = 250;
    DialogTemplate dialog(caption, WS_SYSMENU);
    dialog.SetSize(kWidth, kHeight);
    dialog.Item(DialogClass::Static, kMessageId, SS_LEFT | SS_NOPREFIX, 7, 7, kWidth - 14, 30);
    DWORD editStyle = WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL |
                      ES_WANTRETURN | ES_NOHIDESEL;
    if (!editable) editStyle |= ES_READONLY;
    dialog.Item(DialogClass::Edit, kTextId, editStyle, 7, 40, kWidth - 14, kHeight - 66, {}, WS_EX_CLIENTEDGE);
    dialog.Item(DialogClass::Button, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP, kWidth - 118, kHeight - 21, 54, 14, msg::kOk);
    dialog.Item(DialogClass::Button, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, kWidth - 61, kHeight - 21, 54, 14,
                msg::kCancel);

    TextBoxState state{std::u16string(message), WithCrLf(text), editable};
    const INT_PTR answer = DialogBoxIndirectParamW(ThisModule(), dialog.get(), owner, &Proc,
                                                   reinterpret_cast<LPARAM>(&state));
    if (answer != IDOK || !editable) return std::nullopt;
    return std::move(state.text);
}

}  // namespace qm::addin
