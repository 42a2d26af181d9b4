// A macro's dialog box (DialogBox_Show) as a modal dialog built in memory.
#include <algorithm>

#include "addin/boxes_win32.h"
#include "addin/dialog_template_win32.h"
#include "addin/messages.h"
#include "core/error.h"
#include "core/format.h"
#include "core/value.h"

namespace qm::addin {
namespace {

// The layout, in dialog units.
constexpr int kMargin = 7;
constexpr int kRowGap = 4;
constexpr int kColumnGap = 6;
constexpr int kSectionGap = 8;  // below the message, above the buttons
constexpr int kFieldHeight = 14;
constexpr int kLabelOffset = 3;  // a one-line label sits level with the text in the field beside it
constexpr int kCheckBoxMark = 12;  // the box and the space before the text
constexpr int kDropArrow = 20;
constexpr int kDropListRows = 8;
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;
constexpr int kButtonGap = 4;
constexpr int kMinFieldWidth = 150;
constexpr int kMaxFieldWidth = 260;
constexpr int kMaxLabelWidth = 140;
constexpr int kMaxContentWidth = 420;
// Any one text taller than this is cut rather than pushing the buttons off the screen.
constexpr int kMaxTextHeight = 160;

bool HasLeftLabel(const DialogControl& control) {
    return control.kind == DialogControlKind::TextBox || control.kind == DialogControlKind::DropDown;
}

// Buttons read "&" as the mark of a mnemonic; a macro's text means the character.
std::u16string Literal(std::u16string_view text) {
    std::u16string out;
    for (const char16_t c : text) {
        if (c == u'&') out += u'&';
        out += c;
    }
    return out;
}

// The index of the value a drop-down list starts with, or -1 for an empty list.
int InitialSelection(const DialogControl& control) {
    const auto& values = control.possibleValues;
    const auto found = std::find(values.begin(), values.end(), control.initialValue);
    if (found != values.end()) return static_cast<int>(found - values.begin());
    return values.empty() ? -1 : 0;
}

WORD ControlId(std::size_t index) { return static_cast<WORD>(kDialogControlId + index); }
WORD LabelId(std::size_t index) { return static_cast<WORD>(kDialogLabelId + index); }

void LayOut(DialogTemplate& dialog, const DialogModel& model) {
    const DialogFont font;
    int labelWidth = 0;
    int fieldWidth = kMinFieldWidth;
    int wideText = 0;  // the widest text that spans the dialog, on one line
    if (!model.message.empty()) wideText = font.Measure(model.message).cx;
    for (const DialogControl& control : model.controls) {
        if (HasLeftLabel(control)) labelWidth = std::max<int>(labelWidth, font.Measure(control.label).cx);
        if (control.kind == DialogControlKind::DropDown) {
            for (const auto& value : control.possibleValues) {
                fieldWidth = std::max<int>(fieldWidth, font.Measure(value).cx + kDropArrow);
            }
        } else if (control.kind == DialogControlKind::CheckBox) {
            fieldWidth = std::max<int>(fieldWidth, font.Measure(Literal(control.label), 0, true).cx + kCheckBoxMark);
        } else if (control.kind == DialogControlKind::Label) {
            wideText = std::max<int>(wideText, font.Measure(control.label).cx);
        }
    }
    labelWidth = std::min(labelWidth, kMaxLabelWidth);
    fieldWidth = std::min(fieldWidth, kMaxFieldWidth);
    const int fieldX = kMargin + (labelWidth > 0 ? labelWidth + kColumnGap : 0);
    int contentWidth = fieldX - kMargin + fieldWidth;
    if (wideText > contentWidth) {
        // The field column takes what the texts across the dialog need beyond the rows.
        contentWidth = std::min(wideText, kMaxContentWidth);
        fieldWidth = std::max(fieldWidth, contentWidth - (fieldX - kMargin));
    }
    const auto height = [&](std::u16string_view text, int width, bool prefix = false) {
        return std::min<int>(kMaxTextHeight, font.Measure(text, width, prefix).cy);
    };

    int y = kMargin;
    if (!model.message.empty()) {
        const int h = height(model.message, contentWidth);
        dialog.Item(DialogClass::Static, kDialogMessageId, SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, kMargin, y,
                    contentWidth, h, model.message);
        y += h + kSectionGap;
    }
    for (std::size_t i = 0; i < model.controls.size(); ++i) {
        const DialogControl& control = model.controls[i];
        int rowHeight = 0;
        if (HasLeftLabel(control)) {
            const int labelHeight = height(control.label, labelWidth);
            dialog.Item(DialogClass::Static, LabelId(i), SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, kMargin,
                        y + kLabelOffset, labelWidth, labelHeight, control.label);
            rowHeight = std::max(kFieldHeight, kLabelOffset + labelHeight);
        }
        switch (control.kind) {
            case DialogControlKind::TextBox:
                dialog.Item(DialogClass::Edit, ControlId(i), ES_LEFT | ES_AUTOHSCROLL | WS_TABSTOP, fieldX, y,
                            fieldWidth, kFieldHeight, {}, WS_EX_CLIENTEDGE);
                break;
            case DialogControlKind::DropDown: {
                // A combo box's height in a template includes its open list.
                const int rows = std::clamp<int>(static_cast<int>(control.possibleValues.size()), 1, kDropListRows);
                dialog.Item(DialogClass::ComboBox, ControlId(i), CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, fieldX,
                            y, fieldWidth, kFieldHeight + rows * 10 + 2);
                break;
            }
            case DialogControlKind::CheckBox: {
                const std::u16string text = Literal(control.label);
                rowHeight = std::max(10, height(text, fieldWidth - kCheckBoxMark, true));
                dialog.Item(DialogClass::Button, ControlId(i), BS_AUTOCHECKBOX | BS_MULTILINE | BS_TOP | WS_TABSTOP,
                            fieldX, y, fieldWidth, rowHeight, text);
                break;
            }
            case DialogControlKind::Label:
                rowHeight = height(control.label, contentWidth);
                dialog.Item(DialogClass::Static, ControlId(i), SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, kMargin, y,
                            contentWidth, rowHeight, control.label);
                break;
        }
        y += rowHeight + kRowGap;
    }
    y += kSectionGap - kRowGap;
    const int right = kMargin + contentWidth;
    dialog.Item(DialogClass::Button, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP,
                right - 2 * kButtonWidth - kButtonGap, y, kButtonWidth, kButtonHeight, msg::kOk);
    dialog.Item(DialogClass::Button, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, right - kButtonWidth, y, kButtonWidth,
                kButtonHeight, msg::kCancel);
    dialog.SetSize(right + kMargin, y + kButtonHeight + kMargin);
}

struct DialogState {
    const DialogModel* model = nullptr;
    std::vector<std::u16string> results;
};

// OK is enabled only while no text box that may not be empty is empty.
bool CanClose(HWND dialog, const DialogModel& model) {
    for (std::size_t i = 0; i < model.controls.size(); ++i) {
        const DialogControl& control = model.controls[i];
        if (control.kind == DialogControlKind::TextBox && !control.emptyOK &&
            GetWindowTextLengthW(GetDlgItem(dialog, ControlId(i))) == 0) {
            return false;
        }
    }
    return true;
}

void Initialise(HWND dialog, const DialogModel& model) {
    for (std::size_t i = 0; i < model.controls.size(); ++i) {
        const DialogControl& control = model.controls[i];
        const HWND item = GetDlgItem(dialog, ControlId(i));
        switch (control.kind) {
            case DialogControlKind::TextBox: SetWindowTextW(item, WideText(control.initialValue).c_str()); break;
            case DialogControlKind::CheckBox:
                SendMessageW(item, BM_SETCHECK, control.initialChecked ? BST_CHECKED : BST_UNCHECKED, 0);
                break;
            case DialogControlKind::DropDown:
                for (const auto& value : control.possibleValues) {
                    SendMessageW(item, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(WideText(value).c_str()));
                }
                SendMessageW(item, CB_SETCURSEL, static_cast<WPARAM>(InitialSelection(control)), 0);
                break;
            case DialogControlKind::Label: break;
        }
    }
    EnableWindow(GetDlgItem(dialog, IDOK), CanClose(dialog, model));
}

std::vector<std::u16string> Results(HWND dialog, const DialogModel& model) {
    std::vector<std::u16string> results;
    results.reserve(model.controls.size());
    for (std::size_t i = 0; i < model.controls.size(); ++i) {
        const DialogControl& control = model.controls[i];
        const HWND item = GetDlgItem(dialog, ControlId(i));
        switch (control.kind) {
            case DialogControlKind::TextBox: results.push_back(WindowText(item)); break;
            case DialogControlKind::CheckBox:
                results.emplace_back(SendMessageW(item, BM_GETCHECK, 0, 0) == BST_CHECKED ? u"true" : u"false");
                break;
            case DialogControlKind::DropDown: {
                const LRESULT selected = SendMessageW(item, CB_GETCURSEL, 0, 0);
                const bool valid = selected >= 0 && static_cast<std::size_t>(selected) < control.possibleValues.size();
                results.push_back(valid ? control.possibleValues[static_cast<std::size_t>(selected)] : u"");
                break;
            }
            case DialogControlKind::Label: results.emplace_back(); break;
        }
    }
    return results;
}

INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* state = reinterpret_cast<DialogState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            Initialise(dialog, *reinterpret_cast<DialogState*>(lParam)->model);
            return TRUE;  // the focus goes to the first control that takes it
        case WM_COMMAND:
            if (!state) break;
            if (HIWORD(wParam) == EN_CHANGE) {
                EnableWindow(GetDlgItem(dialog, IDOK), CanClose(dialog, *state->model));
                return TRUE;
            }
            if (LOWORD(wParam) == IDOK) {
                // Enter reaches here even while OK is disabled.
                if (!CanClose(dialog, *state->model)) return TRUE;
                state->results = Results(dialog, *state->model);
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

std::optional<std::vector<std::u16string>> ShowMacroDialog(HWND owner, std::u16string_view caption,
                                                           const DialogModel& model) {
    if (model.controls.size() > kMaxDialogControls) {
        throw MacroError(FormatMessage(msg::kTooManyDialogControls,
                                       {IntegerText(static_cast<std::int64_t>(model.controls.size())),
                                        IntegerText(static_cast<std::int64_t>(kMaxDialogControls))}));
    }
    DialogTemplate dialog(caption, WS_SYSMENU);
    LayOut(dialog, model);
    DialogState state{&model, {}};
    const INT_PTR answer = DialogBoxIndirectParamW(ThisModule(), dialog.get(), owner, &Proc,
                                                   reinterpret_cast<LPARAM>(&state));
    if (answer == -1) {
        throw MacroError(FormatMessage(msg::kDialogFailed, {IntegerText(static_cast<std::int64_t>(GetLastError()))}));
    }
    if (answer != IDOK) return std::nullopt;
    return std::move(state.results);
}

std::vector<std::u16string> InitialDialogValues(const DialogModel& model) {
    std::vector<std::u16string> values;
    values.reserve(model.controls.size());
    for (const DialogControl& control : model.controls) {
        switch (control.kind) {
            case DialogControlKind::TextBox: values.push_back(control.initialValue); break;
            case DialogControlKind::CheckBox: values.emplace_back(control.initialChecked ? u"true" : u"false"); break;
            case DialogControlKind::DropDown: {
                const int selected = InitialSelection(control);
                values.push_back(selected < 0 ? u"" : control.possibleValues[static_cast<std::size_t>(selected)]);
                break;
            }
            case DialogControlKind::Label: values.emplace_back(); break;
        }
    }
    return values;
}

bool DialogCanClose(const DialogModel& model, const std::vector<std::u16string>& values) {
    for (std::size_t i = 0; i < model.controls.size() && i < values.size(); ++i) {
        const DialogControl& control = model.controls[i];
        if (control.kind == DialogControlKind::TextBox && !control.emptyOK && values[i].empty()) return false;
    }
    return true;
}

}  // namespace qm::addin
