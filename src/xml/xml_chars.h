// Characters XML 1.0 cannot carry, and how documents that hold them anyway are read and written.
//
// Some producers put control characters (0x01, 0x0B ...) and unpaired surrogates into text. No
// XML 1.0 parser accepts them, raw or as character references. A reader that is asked to accept
// them shields each one before parsing as a character of the last private-use plane (U+100000
// plus its code unit, which any parser passes through) and turns it back when it hands out a
// value. A writer that is asked to keep them writes character references ("&#x1;", "&#xD800;"),
// which shielding reads back; everything else stays well-formed.
//
// The price: a genuine U+100001..U+10001F, U+10D800..U+10DFFF, U+10FFFE or U+10FFFF in a document
// read this way comes out as the character it would shield. Those are unassigned private-use
// code points that no text in practice holds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qm::xml {

// Whether text[i] can stand in an XML 1.0 document; a valid surrogate pair counts as one (both
// of its halves answer true).
bool IsXmlChar(std::u16string_view text, std::size_t i);

// Whether a code point (not a code unit of a pair) is one that shielding carries: the control
// characters other than NUL, tab, line feed and carriage return, surrogates, U+FFFE and U+FFFF.
bool IsShieldable(char32_t c);

// The document with every illegal character shielded: raw ones anywhere, and character
// references to them outside CDATA sections, comments and processing instructions. Nothing when
// the document holds none.
std::optional<std::u16string> ShieldIllegalCharacters(std::u16string_view document);

// The code unit a shielded code point stands for, or nothing when it stands for none.
std::optional<char16_t> Unshield(char32_t c);

}  // namespace qm::xml
