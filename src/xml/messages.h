// The texts the XML layer reports, in one list. Templates carry numbered placeholders filled by
// FormatMessage.
#pragma once

#include <string_view>

namespace qm::xml::msg {

inline constexpr std::u16string_view kDtdProhibited =
    u"Document type declarations are not allowed in this document";
inline constexpr std::u16string_view kNullCharacter = u"The document contains a null character";
inline constexpr std::u16string_view kNestedTooDeeply =
    u"Elements are nested too deeply: more than [1] levels";
inline constexpr std::u16string_view kWriteTooDeep =
    u"Cannot write elements nested more than [1] levels deep";
inline constexpr std::u16string_view kReaderFailed = u"The XML reader could not be created";
inline constexpr std::u16string_view kUnknownReaderError = u"The XML is not well-formed";
// The position suffix of an error's full text: line, then column when it is known.
inline constexpr std::u16string_view kAtLineColumn = u" (line [1], column [2])";
inline constexpr std::u16string_view kAtLine = u" (line [1])";

}  // namespace qm::xml::msg
