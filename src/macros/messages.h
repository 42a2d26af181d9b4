// The user-facing texts of the macro documents, in one list. Templates carry numbered
// placeholders filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::macros::msg {

// The "Edit XML" box of the macro editor.
inline constexpr std::u16string_view kEditXmlTitle = u"Edit XML";
inline constexpr std::u16string_view kEditXmlMessage =
    u"You can copy the below XML and share with others, or use it as a starting point for a new macro. You can "
    u"also edit the XML below and click OK to import. It will replace the macro you are currently working on.";

// Reading a macro document.
inline constexpr std::u16string_view kExpressionTooDeep =
    u"Expression in macro is nested too deeply: more than [1] levels";

}  // namespace qm::macros::msg
