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

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace qm::xml {

// Whether text[i] can stand in an XML 1.0 document; a valid surrogate pair counts as one (both
// of its halves answer true).
inline bool IsXmlChar(std::u16string_view text, std::size_t i) {
    const char16_t c = text[i];
    if (c < 0x20) return c == u'\t' || c == u'\n' || c == u'\r';
    if (c < 0xD800) return true;
    if (c <= 0xDBFF) return i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF;
    if (c <= 0xDFFF) return i > 0 && text[i - 1] >= 0xD800 && text[i - 1] <= 0xDBFF;
    return c != 0xFFFE && c != 0xFFFF;
}

// Four UTF-16 code units tested at once, for the loops that pass over whole documents: nearly all
// of their text is ASCII, and a character at a time costs several times as much.
class FourUnits {
public:
    explicit FourUnits(const char16_t* at) { std::memcpy(&w_, at, sizeof w_); }
    bool Ascii() const { return (w_ & Lanes(0xFF80)) == 0; }
    // Whether one of them is below `bound`: for ASCII units only.
    bool AnyBelow(char16_t bound) const { return ((w_ - Lanes(bound)) & ~w_ & Lanes(0x8000)) != 0; }
    // Whether one of them is `c`: for any units.
    bool Any(char16_t c) const { return FourUnits(w_ ^ Lanes(c)).AnyBelow(1); }

private:
    explicit FourUnits(std::uint64_t w) : w_(w) {}
    static constexpr std::uint64_t Lanes(std::uint16_t v) { return v * 0x0001000100010001ull; }
    std::uint64_t w_;
};

// Whether a code point (not a code unit of a pair) is one that shielding carries: the control
// characters other than NUL, tab, line feed and carriage return, surrogates, U+FFFE and U+FFFF.
bool IsShieldable(char32_t c);

struct ShieldOptions {
    // Illegal characters: raw ones anywhere, and character references to them outside CDATA
    // sections, comments and processing instructions. Without it, raw unpaired surrogates become
    // U+FFFD (as AppendUtf8 writes them) and the parser judges the rest.
    bool illegal = true;
    // References to tab, line feed and carriage return are shielded too, and references beyond
    // U+FFFF written as the character itself: for a parser that reads the former as spaces and
    // cuts the latter (Wine's XmlLite does both).
    bool blankReferences = false;
};

// The document in UTF-8 with the characters the options name shielded.
std::string ToShieldedUtf8(std::u16string_view document, ShieldOptions options = {});

// UTF-16 to UTF-8 and back, as ToUtf8 and FromUtf8 (core/text.h) convert, only faster on the
// mostly-ASCII text of documents: unpaired surrogates become U+FFFD in UTF-8; invalid UTF-8
// sequences become U+FFFD, one per byte.
void AppendUtf8(std::string& out, std::u16string_view text);
std::u16string Utf8ToUtf16(std::string_view utf8);

// The code unit a shielded code point stands for, or nothing when it stands for none under the
// options the document was shielded with.
std::optional<char16_t> Unshield(char32_t c, ShieldOptions options = {});

}  // namespace qm::xml
