#include "addin/progress_wnd_win32.h"

#include <algorithm>

#include "addin/dialog_template_win32.h"
#include "addin/messages.h"
#include "runtime/strings.h"

namespace qm::addin {
namespace {

// The layout, in dialog units.
constexpr int kMargin = 7;
constexpr int kTextWidth = 220;
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kGap = 7;
// A body longer than this is cut rather than growing the window off the screen.
constexpr int kMaxTextHeight = 120;

ProgressWnd* Self(HWND window) { return reinterpret_cast<ProgressWnd*>(GetWindowLongPtrW(window, DWLP_USER)); }

}  // namespace

ProgressWnd::~ProgressWnd() { Destroy(); }

void ProgressWnd::Destroy() {
    if (window_) DestroyWindow(window_);
    window_ = nullptr;
    shown_ = false;
}

bool ProgressWnd::Show(std::u16string_view title, std::u16string_view body) {
    cancelled_ = false;
    Destroy();
    // High enough for the body and for the text that replaces it on Cancel.
    const DialogFont font;
    const int textHeight = std::min<int>(
        kMaxTextHeight, std::max(font.Measure(body, kTextWidth).cy,
                                 font.Measure(strings::Text(strings::Id::Cancelled), kTextWidth).cy));
    const int buttonTop = kMargin + textHeight + kGap;
    DialogTemplate dialog(title);
    dialog.Item(DialogClass::Static, kBodyId, SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, kMargin, kMargin, kTextWidth,
                textHeight, body);
    dialog.Item(DialogClass::Button, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP,
                kMargin + (kTextWidth - kButtonWidth) / 2, buttonTop, kButtonWidth, kButtonHeight, msg::kCancel);
    dialog.SetSize(kTextWidth + 2 * kMargin, buttonTop + kButtonHeight + kMargin);
    window_ = CreateDialogIndirectParamW(ThisModule(), dialog.get(), owner_, &Proc, reinterpret_cast<LPARAM>(this));
    if (!window_) return false;
    PostMessageW(window_, kShowMessage, 0, 0);
    Pump();
    shown_ = true;
    return true;
}

void ProgressWnd::Hide() {
    if (!window_) return;
    PostMessageW(window_, kHideMessage, 0, 0);
    Pump();
    shown_ = false;
}

void ProgressWnd::Reveal() {
    if (!window_) return;
    PostMessageW(window_, kShowMessage, 0, 0);
    Pump();
    shown_ = true;
}

void ProgressWnd::Repaint(std::uint64_t) { Pump(); }

void ProgressWnd::Pump() {
    MSG message;
    while (window_ && PeekMessageW(&message, window_, 0, 0, PM_REMOVE)) {
        if (!IsDialogMessageW(window_, &message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

void ProgressWnd::Cancel() {
    if (cancelled_.exchange(true)) return;
    SetDlgItemTextW(window_, kBodyId, WideText(strings::Text(strings::Id::Cancelled)).c_str());
    EnableWindow(GetDlgItem(window_, IDCANCEL), FALSE);
    UpdateWindow(window_);
}

INT_PTR CALLBACK ProgressWnd::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(window, DWLP_USER, lParam);
            return FALSE;  // the window is not shown yet: it takes no focus now
        case kShowMessage:
            ShowWindow(window, SW_SHOWNORMAL);
            UpdateWindow(window);
            return TRUE;
        case kHideMessage: ShowWindow(window, SW_HIDE); return TRUE;
        case WM_COMMAND:
            // The Cancel button, Esc, and Alt+F4 (which the dialog manager turns into IDCANCEL).
            if (LOWORD(wParam) == IDCANCEL) {
                if (ProgressWnd* self = Self(window)) self->Cancel();
                return TRUE;
            }
            break;
        default: break;
    }
    return FALSE;
}

}  // namespace qm::addin
