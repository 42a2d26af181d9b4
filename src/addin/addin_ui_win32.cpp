#include "addin/addin_ui.h"

#include <cstdio>
#include <cstdlib>

#include "addin/boxes_win32.h"
#include "addin/dialog_template_win32.h"
#include "core/text.h"

namespace qm::addin {

AddinUi::AddinUi() {
    if (const wchar_t* file = _wgetenv(L"QUILLMARK_TEST_BOXES"); file && *file) record_ = std::filesystem::path(file);
}

void AddinUi::SetOwner(HWND owner) noexcept {
    owner_ = owner;
    progress_.SetOwner(owner);
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
    MessageBoxW(owner_, WideText(text).c_str(), WideText(caption).c_str(), MB_OK | MB_ICONERROR);
}

bool AddinUi::Ask(std::u16string_view caption, std::u16string_view text) {
    if (Recorded(caption, text)) return true;
    return MessageBoxW(owner_, WideText(text).c_str(), WideText(caption).c_str(), MB_YESNO | MB_ICONQUESTION) ==
           IDYES;
}

Confirmation AddinUi::Confirm(std::u16string_view caption, std::u16string_view text,
                              std::u16string_view checkBoxLabel) {
    if (Recorded(caption, text)) return Confirmation{true, false};
    return ShowConfirmation(owner_, caption, text, checkBoxLabel);
}

std::optional<std::vector<std::u16string>> AddinUi::ShowDialog(std::u16string_view caption,
                                                               const DialogModel& model) {
    if (record_) {
        std::vector<std::u16string> values = InitialDialogValues(model);
        std::u16string text = model.message;
        for (std::size_t i = 0; i < model.controls.size(); ++i) text += u"\t" + model.controls[i].label + u"=" + values[i];
        Recorded(caption, text);
        if (!DialogCanClose(model, values)) return std::nullopt;
        return values;
    }
    const bool wasShown = progress_.shown();
    if (wasShown) progress_.Hide();
    std::optional<std::vector<std::u16string>> results = ShowMacroDialog(owner_, caption, model);
    if (wasShown && results) progress_.Reveal();
    return results;
}

std::optional<std::u16string> AddinUi::ShowText(std::u16string_view caption, std::u16string_view message,
                                                std::u16string_view text, bool editable) {
    if (Recorded(caption, std::u16string(message) + u"\t" + std::u16string(text))) {
        return editable ? std::optional<std::u16string>(text) : std::nullopt;
    }
    return ShowTextBox(owner_, caption, message, text, editable);
}

}  // namespace qm::addin
