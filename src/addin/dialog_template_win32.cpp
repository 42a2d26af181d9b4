#include "addin/dialog_template_win32.h"

#include <algorithm>

namespace qm::addin {
namespace {

// Where the item count and the size sit in the template's header.
constexpr std::size_t kCountWord = 4;
constexpr std::size_t kWidthWord = 7;
constexpr std::size_t kHeightWord = 8;

WORD Short(int value) { return static_cast<WORD>(static_cast<short>(std::clamp(value, -32768, 32767))); }

}  // namespace

DialogTemplate::DialogTemplate(std::u16string_view title, DWORD style, DWORD extraStyle) {
    Dword(DS_SHELLFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | style);
    Dword(extraStyle);
    words_.push_back(0);  // item count, filled in by get()
    words_.insert(words_.end(), {0, 0, 0, 0});
    words_.push_back(0);  // no menu
    words_.push_back(0);  // the standard dialog class
    Text(title);
    words_.push_back(kDialogFontPoints);
    Text(kDialogFontFace);
}

void DialogTemplate::SetSize(int width, int height) {
    words_[kWidthWord] = Short(width);
    words_[kHeightWord] = Short(height);
}

void DialogTemplate::Item(DialogClass windowClass, WORD id, DWORD style, int x, int y, int cx, int cy,
                          std::u16string_view text, DWORD extraStyle) {
    if (words_.size() % 2 != 0) words_.push_back(0);  // items start on a DWORD
    Dword(style | WS_CHILD | WS_VISIBLE);
    Dword(extraStyle);
    for (const int value : {x, y, cx, cy}) words_.push_back(Short(value));
    words_.push_back(id);
    words_.push_back(0xFFFF);
    words_.push_back(static_cast<WORD>(windowClass));
    Text(text);
    words_.push_back(0);  // no creation data
    ++items_;
}

const DLGTEMPLATE* DialogTemplate::get() {
    words_[kCountWord] = static_cast<WORD>(std::min<std::size_t>(items_, 0xFFFF));
    return reinterpret_cast<const DLGTEMPLATE*>(words_.data());
}

void DialogTemplate::Dword(DWORD value) {
    words_.push_back(LOWORD(value));
    words_.push_back(HIWORD(value));
}

void DialogTemplate::Text(std::u16string_view text) {
    words_.insert(words_.end(), text.begin(), text.end());
    words_.push_back(0);
}

UINT DialogFont::SystemDpi() {
    // Windows 10 (1607) and later know the system's DPI apart from the screen's device context.
    using GetDpiForSystemFunction = UINT(WINAPI*)();
    if (const HMODULE user32 = GetModuleHandleW(L"user32.dll")) {
        if (const auto function = reinterpret_cast<GetDpiForSystemFunction>(
                reinterpret_cast<void*>(GetProcAddress(user32, "GetDpiForSystem")))) {
            if (const UINT dpi = function()) return dpi;
        }
    }
    UINT dpi = 96;
    if (const HDC screen = GetDC(nullptr)) {
        dpi = static_cast<UINT>(std::max(GetDeviceCaps(screen, LOGPIXELSY), 1));
        ReleaseDC(nullptr, screen);
    }
    return dpi;
}

DialogFont::DialogFont() : dc_(CreateCompatibleDC(nullptr)) {
    const int height = -MulDiv(kDialogFontPoints, static_cast<int>(SystemDpi()), 72);
    // DS_SHELLFONT turns the face "MS Shell Dlg" into the shell's current dialog face.
    font_ = CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                        CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, L"MS Shell Dlg 2");
    if (!dc_) return;
    if (font_) previous_ = SelectObject(dc_, font_);
    // The dialog manager's base units: the average width of the Latin letters, the font's height.
    static constexpr wchar_t kLetters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    SIZE letters{};
    if (GetTextExtentPoint32W(dc_, kLetters, 52, &letters)) baseX_ = std::max<int>(1, (letters.cx / 26 + 1) / 2);
    TEXTMETRICW metrics{};
    if (GetTextMetricsW(dc_, &metrics)) baseY_ = std::max<int>(1, metrics.tmHeight);
}

DialogFont::~DialogFont() {
    if (dc_ && previous_) SelectObject(dc_, previous_);
    if (font_) DeleteObject(font_);
    if (dc_) DeleteDC(dc_);
}

SIZE DialogFont::Measure(std::u16string_view text, int maxWidth, bool prefix) const {
    if (!dc_ || text.empty()) return SIZE{0, text.empty() ? 0 : 8};
    RECT box{0, 0, maxWidth > 0 ? MulDiv(maxWidth, baseX_, 4) : 0, 0};
    UINT format = DT_CALCRECT | DT_LEFT | DT_TOP | DT_EXPANDTABS;
    if (maxWidth > 0) format |= DT_WORDBREAK | DT_EDITCONTROL;
    else format |= DT_SINGLELINE;
    if (!prefix) format |= DT_NOPREFIX;
    const std::wstring wide = WideText(text);
    DrawTextW(dc_, wide.c_str(), static_cast<int>(wide.size()), &box, format);
    // Rounded up, so that a measured text never wraps or clips at the size it was measured for.
    const auto units = [](LONG pixels, int base, int per) {
        return static_cast<LONG>((static_cast<long long>(pixels) * per + base - 1) / base);
    };
    return SIZE{units(box.right - box.left, baseX_, 4), units(box.bottom - box.top, baseY_, 8)};
}

HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisModule), &module);
    return module;
}

std::u16string WindowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(std::max(GetWindowTextLengthW(window), 0)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(std::max(GetWindowTextW(window, text.data(), static_cast<int>(text.size())), 0)));
    return std::u16string(text.begin(), text.end());
}

}  // namespace qm::addin
