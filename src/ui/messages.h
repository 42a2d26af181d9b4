// The texts the terminal user interface shows, in one list. Templates carry numbered placeholders
// filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::ui::msg {

// The progress line: the body text, the statements begun, the seconds since the run started.
inline constexpr std::u16string_view kProgressLine = u"[1]: [2] statements, [3] s";

// Multi-page confirmation
inline constexpr std::u16string_view kYesNoPrompt = u" [y/N] ";
inline constexpr std::u16string_view kConfirmRefusedNotInteractive =
    u"[1]\nNot saving: no one to ask on this terminal. Pass --yes to allow saving multiple pages.";

// Dialog boxes
inline constexpr std::u16string_view kDialogTitle = u"== [1] ==";
inline constexpr std::u16string_view kTextBoxPrompt = u"[1] [[2]]: ";
inline constexpr std::u16string_view kCheckBoxPrompt = u"[1] [y/n, now [2]]: ";
inline constexpr std::u16string_view kDropDownChoice = u"  [1]) [2]";
inline constexpr std::u16string_view kDropDownPrompt = u"[1] [number, now [2]]: ";
inline constexpr std::u16string_view kValueRequired = u"A value is required.";
inline constexpr std::u16string_view kAnswerYesOrNo = u"Answer y or n.";
inline constexpr std::u16string_view kAnswerChoiceNumber = u"Answer with a number from 1 to [1].";
inline constexpr std::u16string_view kDialogCancelled = u"Dialog box cancelled: the macro is cancelled.";
inline constexpr std::u16string_view kMissingAnswer =
    u"The dialog box asks for '[1]' ([2]) and no one can answer it here: pass --answer [1]=VALUE";
inline constexpr std::u16string_view kTextBoxKind = u"text box";
inline constexpr std::u16string_view kCheckBoxKind = u"check box";
inline constexpr std::u16string_view kDropDownKind = u"drop-down list";
inline constexpr std::u16string_view kEmptyAnswer = u"The dialog box needs a value for '[1]': it may not be empty";
inline constexpr std::u16string_view kBadCheckBoxAnswer = u"The answer for check box '[1]' must be y or n, not '[2]'";
inline constexpr std::u16string_view kBadDropDownAnswer = u"The answer for '[1]' must be one of: [2]";

}  // namespace qm::ui::msg
