// The texts the command-line tool prints itself; texts of the libraries below come from their own
// lists. Placeholders [1], [2], ... are filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::cli::msg {

// Macro files and the store.
inline constexpr std::u16string_view kNotAMacroFile = u"[1]: expected a .qm (text form) or .xml file";
inline constexpr std::u16string_view kSeveralMacros = u"[1] holds [2] macros: choose one with --macro ID|NAME";
inline constexpr std::u16string_view kNoMacro = u"[1] holds no macro";
inline constexpr std::u16string_view kListEntry = u"  [1]\t[2]";
inline constexpr std::u16string_view kNotInStore = u"[1] (in [2])";

// run and functions.
inline constexpr std::u16string_view kBadAnswer = u"--answer expects NAME=VALUE, not '[1]'";
inline constexpr std::u16string_view kVariableLine = u"$[1] = [2]";
inline constexpr std::u16string_view kSignature = u"[1]([2]) -> [3]";
inline constexpr std::u16string_view kParameterLine = u"  [1] ([2]): [3]";
inline constexpr std::u16string_view kParametersHeading = u"Parameters:";

// check.
inline constexpr std::u16string_view kCheckedClean = u"[1]: OK";

}  // namespace qm::cli::msg
