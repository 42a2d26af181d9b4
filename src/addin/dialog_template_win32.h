// Dialogs built in memory: a DLGTEMPLATE with its items, laid out in dialog units, and the
// measurements that lay one out around its texts.
//
// Dialog units follow the dialog's font, which the dialog manager creates at the system's DPI, so a
// layout in dialog units scales with the DPI by itself. What has to be measured is text: DialogFont
// creates the same font at the same DPI and converts the pixel sizes of texts into dialog units.
#pragma once

#include "addin/win32.h"

#include <string>
#include <string_view>
#include <vector>

namespace qm::addin {

// The face and size every dialog of the add-in uses (DS_SHELLFONT gives the shell's dialog font).
inline constexpr std::u16string_view kDialogFontFace = u"MS Shell Dlg";
inline constexpr WORD kDialogFontPoints = 9;

// The predefined window classes a template names by ordinal.
enum class DialogClass : WORD { Button = 0x0080, Edit = 0x0081, Static = 0x0082, ComboBox = 0x0085 };

class DialogTemplate {
public:
    // A modal frame with a caption, centred over its owner. `style` adds to that (WS_THICKFRAME,
    // say); `extraStyle` is the extended style.
    explicit DialogTemplate(std::u16string_view title, DWORD style = 0, DWORD extraStyle = 0);

    void SetSize(int width, int height);
    // Coordinates and sizes beyond what a template holds are clamped, never wrapped.
    void Item(DialogClass windowClass, WORD id, DWORD style, int x, int y, int cx, int cy,
              std::u16string_view text = {}, DWORD extraStyle = 0);

    // The template, with the item count filled in.
    const DLGTEMPLATE* get();

private:
    void Dword(DWORD value);
    void Text(std::u16string_view text);

    std::vector<WORD> words_;
    std::size_t items_ = 0;
};

// The dialog font at the system's DPI, for measuring texts in dialog units.
class DialogFont {
public:
    DialogFont();
    ~DialogFont();
    DialogFont(const DialogFont&) = delete;
    DialogFont& operator=(const DialogFont&) = delete;

    // The DPI the dialogs are laid out for: the system's.
    static UINT SystemDpi();

    // The size, in dialog units, of a text wrapped at `maxWidth` dialog units (on one line when
    // maxWidth is 0). With `prefix`, "&" marks a mnemonic, as in buttons and check boxes.
    SIZE Measure(std::u16string_view text, int maxWidth = 0, bool prefix = false) const;

private:
    HDC dc_ = nullptr;
    HFONT font_ = nullptr;
    HGDIOBJ previous_ = nullptr;
    int baseX_ = 1, baseY_ = 1;  // average character width and height in pixels
};

// A UTF-16 text as the system's wide-character APIs want it, terminated.
inline std::wstring WideText(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

// The module the add-in's dialogs belong to: the one this code is linked into.
HINSTANCE ThisModule();

// A window's text.
std::u16string WindowText(HWND window);

}  // namespace qm::addin
