#include "addin/addin_ui.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "addin/com_holders.h"
#include "addin/messages.h"
#include "core/text.h"

namespace qm::addin {
namespace {

// --- the text box: a dialog built in memory -----------------------------------------------------

constexpr WORD kMessageId = 100;
constexpr WORD kTextId = 101;
constexpr WORD kButtonClass = 0x0080;
constexpr WORD kEditClass = 0x0081;
constexpr WORD kStaticClass = 0x0082;

// A DLGTEMPLATE with its items, laid out in dialog units.
class DialogTemplate {
public:
    DialogTemplate(std::u16string_view title, WORD items, short width, short height) {
        Dword(DS_MODALFRAME | DS_SETFONT | DS_SHELLFONT | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME);
        Dword(0);
        words_.push_back(items);
        Rect(0, 0, width, height);
        words_.push_back(0);  // no menu
        words_.push_back(0);  // the standard dialog class
        Text(title);
        words_.push_back(9);  // point size
        Text(u"MS Shell Dlg");
    }

    void Item(WORD windowClass, WORD id, DWORD style, short x, short y, short cx, short cy,
              std::u16string_view text = {}) {
        if (words_.size() % 2 != 0) words_.push_back(0);  // items start on a DWORD
        Dword(style | WS_CHILD | WS_VISIBLE);
        Dword(0);
        Rect(x, y, cx, cy);
        words_.push_back(id);
        words_.push_back(0xFFFF);
        words_.push_back(windowClass);
        Text(text);
        words_.push_back(0);  // no creation data
    }

    const DLGTEMPLATE* get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

private:
    void Dword(DWORD value) {
        words_.push_back(LOWORD(value));
        words_.push_back(HIWORD(value));
    }
    void Rect(short x, short y, short cx, short cy) {
        for (const short value : {x, y, cx, cy}) words_.push_back(static_cast<WORD>(value));
    }
    void Text(std::u16string_view text) {
        words_.insert(words_.end(), text.begin(), text.end());
        words_.push_back(0);
    }

    std::vector<WORD> words_;
};

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

INT_PTR CALLBACK TextBoxProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: {
            auto* state = reinterpret_cast<TextBoxState*>(lParam);
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            SetDlgItemTextW(dialog, kMessageId, Wide(state->message.c_str()));
            SetDlgItemTextW(dialog, kTextId, Wide(state->text.c_str()));
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) {
                auto* state = reinterpret_cast<TextBoxState*>(GetWindowLongPtrW(dialog, DWLP_USER));
                if (state->editable) {
                    const HWND edit = GetDlgItem(dialog, kTextId);
                    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(edit)) + 1, L'\0');
                    text.resize(static_cast<std::size_t>(GetWindowTextW(edit, text.data(), static_cast<int>(text.size()))));
                    state->text.assign(Utf16(text.data(), text.size()));
                }
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

std::wstring WideString(std::u16string_view text) { return std::wstring(Wide(text), text.size()); }

}  // namespace

AddinUi::AddinUi() {
    if (const wchar_t* file = _wgetenv(L"QUILLMARK_TEST_BOXES"); file && *file) record_ = std::filesystem::path(file);
}

bool AddinUi::Recorded(std::u16string_view caption, std::u16string_view text) const {
    if (!record_) return false;
    std::string line = ToUtf8(caption) + "\t";
    for (const char c : ToUtf8(text)) {
        if (c == '\r') line += "\\r";
        else if (c == '\n') line += "\\n";
        else line += c;
    }
    line += '\n';
    if (FILE* file = _wfopen(record_->c_str(), L"ab")) {
        std::fwrite(line.data(), 1, line.size(), file);
        std::fclose(file);
    }
    return true;
}

void AddinUi::ShowError(std::u16string_view caption, std::u16string_view text) {
    if (Recorded(caption, text)) return;
    MessageBoxW(owner_, WideString(text).c_str(), WideString(caption).c_str(), MB_OK | MB_ICONERROR);
}

bool AddinUi::Ask(std::u16string_view caption, std::u16string_view text) {
    if (Recorded(caption, text)) return true;
    return MessageBoxW(owner_, WideString(text).c_str(), WideString(caption).c_str(), MB_YESNO | MB_ICONQUESTION) ==
           IDYES;
}

Confirmation AddinUi::Confirm(std::u16string_view caption, std::u16string_view text, std::u16string_view) {
    // A message box has no check box: the question is asked again at the next run.
    return Confirmation{Ask(caption, text), false};
}

std::optional<std::u16string> AddinUi::ShowText(std::u16string_view caption, std::u16string_view message,
                                                std::u16string_view text, bool editable) {
    if (Recorded(caption, std::u16string(message) + u"\t" + std::u16string(text))) {
        return editable ? std::optional<std::u16string>(text) : std::nullopt;
    }
    constexpr short kWidth = 360, kHeight = 250;
    DialogTemplate dialog(caption, 4, kWidth, kHeight);
    dialog.Item(kStaticClass, kMessageId, SS_LEFT, 7, 7, kWidth - 14, 30);
    DWORD editStyle = WS_BORDER | WS_TABSTOP | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL |
                      ES_AUTOHSCROLL | ES_WANTRETURN | ES_NOHIDESEL;
    if (!editable) editStyle |= ES_READONLY;
    dialog.Item(kEditClass, kTextId, editStyle, 7, 40, kWidth - 14, kHeight - 66);
    dialog.Item(kButtonClass, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP, kWidth - 118, kHeight - 21, 54, 14, msg::kOk);
    dialog.Item(kButtonClass, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, kWidth - 61, kHeight - 21, 54, 14, msg::kCancel);

    TextBoxState state{std::u16string(message), WithCrLf(text), editable};
    const INT_PTR answer = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), dialog.get(), owner_, &TextBoxProc,
                                                   reinterpret_cast<LPARAM>(&state));
    if (answer != IDOK || !editable) return std::nullopt;
    return std::move(state.text);
}

}  // namespace qm::addin
