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
// Failures of the system's XML reader (Windows), by kind; any other carries its error code.
inline constexpr std::u16string_view kXmlLiteUnavailable = u"The system's XML reader (xmllite.dll) cannot be loaded";
inline constexpr std::u16string_view kXmlLiteError = u"The XML is not well-formed (error 0x[1])";
inline constexpr std::u16string_view kUnexpectedEnd = u"The document ends unexpectedly";
inline constexpr std::u16string_view kBadEncoding = u"The document's encoding is not valid";
inline constexpr std::u16string_view kIllegalCharacter = u"The document contains a character XML does not allow";
inline constexpr std::u16string_view kBadName = u"A name contains a character names do not allow";
inline constexpr std::u16string_view kBadSyntax = u"The markup is not valid here";
inline constexpr std::u16string_view kMissingPunctuation = u"A quote, '=', ';' or '>' is missing";
inline constexpr std::u16string_view kLessThanInAttribute = u"An attribute value contains '<'";
inline constexpr std::u16string_view kSecondRoot = u"Only one root element is allowed";
inline constexpr std::u16string_view kTagMismatch = u"The end tag does not match the start tag";
inline constexpr std::u16string_view kDuplicateAttribute = u"An attribute appears twice on one element";
inline constexpr std::u16string_view kUndeclaredEntity = u"The document refers to an undeclared entity";
inline constexpr std::u16string_view kUndeclaredPrefix = u"The document uses an undeclared namespace prefix";
inline constexpr std::u16string_view kBadCharacterReference = u"A character reference is not valid";
// The position suffix of an error's full text: line, then column when it is known.
inline constexpr std::u16string_view kAtLineColumn = u" (line [1], column [2])";
inline constexpr std::u16string_view kAtLine = u" (line [1])";

}  // namespace qm::xml::msg
