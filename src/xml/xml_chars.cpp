#include "xml/xml_chars.h"

#include <array>

namespace qm::xml {

namespace {

constexpr char32_t kShieldBase = 0x100000;

// Writes a code point as UTF-8 at p; returns the end.
char* PutUtf8(char* p, char32_t c) {
    if (c < 0x80) {
        *p++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *p++ = static_cast<char>(0xC0 | (c >> 6));
        *p++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *p++ = static_cast<char>(0xE0 | (c >> 12));
        *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        *p++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        *p++ = static_cast<char>(0xF0 | (c >> 18));
        *p++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        *p++ = static_cast<char>(0x80 | (c & 0x3F));
    }
    return p;
}

// The ASCII characters that need no look when shielding: all but controls, '<' and '&'.
constexpr auto kPlainAscii = [] {
    std::array<bool, 128> plain{};
    for (int c = 0x20; c < 0x80; ++c) plain[c] = c != '<' && c != '&';
    return plain;
}();

bool IsHigh(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLow(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// A character reference "&#...;" at text[i]: its length and code point when it is one.
bool CharacterReference(std::u16string_view text, std::size_t i, std::size_t& length, char32_t& value) {
    std::size_t j = i + 2;
    const bool hex = j < text.size() && text[j] == u'x';
    if (hex) ++j;
    const std::size_t digitsStart = j;
    value = 0;
    for (; j < text.size() && j - digitsStart < 8; ++j) {
        const char16_t c = text[j];
        unsigned digit;
        if (c >= u'0' && c <= u'9') {
            digit = c - u'0';
        } else if (hex && c >= u'a' && c <= u'f') {
            digit = c - u'a' + 10;
        } else if (hex && c >= u'A' && c <= u'F') {
            digit = c - u'A' + 10;
        } else {
            break;
        }
        value = value * (hex ? 16 : 10) + digit;
    }
    if (j == digitsStart || j >= text.size() || text[j] != u';') return false;
    length = j + 1 - i;
    return true;
}

// Whether shielding leaves the text as plain conversion does (most documents): it holds no
// character reference, and no raw character that shielding carries when `illegal`.
bool NothingToShield(std::u16string_view text, bool illegal) {
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n; ++i) {
        for (; i + 4 <= n; i += 4) {
            const FourUnits four(text.data() + i);
            if (!four.Ascii() || four.AnyBelow(0x20) || four.Any(u'&')) break;
        }
        if (i == n) break;
        const char16_t c = text[i];
        if (c == u'&') {
            if (i + 1 < n && text[i + 1] == u'#') return false;
        } else if (illegal && (c < 0x20 || c >= 0xD800) && !IsXmlChar(text, i) && c != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool IsShieldable(char32_t c) {
    if (c < 0x20) return c != 0 && c != u'\t' && c != u'\n' && c != u'\r';
    return (c >= 0xD800 && c <= 0xDFFF) || c == 0xFFFE || c == 0xFFFF;
}

std::optional<char16_t> Unshield(char32_t c, ShieldOptions options) {
    if (c < kShieldBase || c > kShieldBase + 0xFFFF) return std::nullopt;
    const char32_t unit = c - kShieldBase;
    const bool blank = unit == u'\t' || unit == u'\n' || unit == u'\r';
    if (!(options.illegal && IsShieldable(unit)) && !(options.blankReferences && blank)) return std::nullopt;
    return static_cast<char16_t>(unit);
}

std::string ToShieldedUtf8(std::u16string_view text, ShieldOptions options) {
    const bool illegal = options.illegal;
    if (NothingToShield(text, illegal)) {
        std::string out;
        AppendUtf8(out, text);
        return out;
    }
    std::string out(text.size() * 4, '\0');  // a shielded code unit takes four bytes, nothing takes more
    char* p = out.data();
    std::size_t quietUntil = 0;  // end of a CDATA section, comment or processing instruction
    const char16_t* const units = text.data();
    const std::size_t n = text.size();
    for (std::size_t i = 0; i < n; ++i) {
        // Most of a document is plain ASCII: copied in a tight loop.
        while (i < n && units[i] < 0x80 && kPlainAscii[units[i]]) *p++ = static_cast<char>(units[i++]);
        if (i == n) break;
        const char16_t c = units[i];
        if (c < 0x80 && c != u'<' && c != u'&' && !(illegal && IsShieldable(c))) {
            *p++ = static_cast<char>(c);
            continue;
        }
        if (c == u'<' && i >= quietUntil && i + 1 < text.size() && (text[i + 1] == u'!' || text[i + 1] == u'?')) {
            const std::u16string_view rest = text.substr(i);
            std::u16string_view close;
            if (rest.starts_with(u"<![CDATA[")) {
                close = u"]]>";
            } else if (rest.starts_with(u"<!--")) {
                close = u"-->";
            } else if (rest.starts_with(u"<?")) {
                close = u"?>";
            }
            if (!close.empty()) {
                const std::size_t end = text.find(close, i + 2);
                quietUntil = end == std::u16string_view::npos ? text.size() : end + close.size();
            }
        } else if (c == u'&' && i >= quietUntil && i + 1 < text.size() && text[i + 1] == u'#') {
            std::size_t length = 0;
            char32_t value = 0;
            if (CharacterReference(text, i, length, value)) {
                const bool blank = value == u'\t' || value == u'\n' || value == u'\r';
                if ((illegal && value <= 0xFFFF && IsShieldable(value)) || (options.blankReferences && blank)) {
                    p = PutUtf8(p, kShieldBase + value);
                    i += length - 1;
                    continue;
                }
                if (options.blankReferences && value > 0xFFFF && value <= 0x10FFFF) {
                    p = PutUtf8(p, value);
                    i += length - 1;
                    continue;
                }
            }
        } else if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
            p = PutUtf8(p, 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
            continue;
        }
        if (illegal && IsShieldable(c)) {
            p = PutUtf8(p, kShieldBase + c);
        } else {
            p = PutUtf8(p, c >= 0xD800 && c <= 0xDFFF ? 0xFFFD : c);
        }
    }
    out.resize(static_cast<std::size_t>(p - out.data()));
    return out;
}

// The length of the text in UTF-8, as AppendUtf8 writes it: the string is then sized once,
// exactly, rather than for the worst case and cut (filling three bytes a unit costs more than
// counting).
namespace {
std::size_t Utf8Length(std::u16string_view text) {
    std::size_t length = text.size();
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (; i + 4 <= text.size() && FourUnits(text.data() + i).Ascii(); i += 4) {
        }
        if (i == text.size()) break;
        const char16_t c = text[i];
        if (c < 0x80) continue;
        if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
            length += 2;  // four bytes for the two units
            ++i;
        } else {
            length += c < 0x800 ? 1 : 2;  // a lone surrogate is written as U+FFFD, three bytes
        }
    }
    return length;
}
}  // namespace

void AppendUtf8(std::string& out, std::u16string_view text) {
    const std::size_t start = out.size();
    out.resize(start + Utf8Length(text));
    char* p = out.data() + start;
    for (std::size_t i = 0; i < text.size(); ++i) {
        for (; i + 4 <= text.size() && FourUnits(text.data() + i).Ascii(); i += 4, p += 4) {
            for (int k = 0; k < 4; ++k) p[k] = static_cast<char>(text[i + k]);
        }
        if (i == text.size()) break;
        const char16_t c = text[i];
        if (c < 0x80) {
            *p++ = static_cast<char>(c);
        } else if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
            p = PutUtf8(p, 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
        } else {
            p = PutUtf8(p, c >= 0xD800 && c <= 0xDFFF ? 0xFFFD : c);
        }
    }
    out.resize(static_cast<std::size_t>(p - out.data()));
}

std::u16string Utf8ToUtf16(std::string_view in) {
    std::u16string out(in.size(), u'\0');
    char16_t* p = out.data();
    const std::size_t n = in.size();
    std::size_t i = 0;
    while (i < n) {
        // ASCII eight bytes at a time.
        for (std::uint64_t w; i + 8 <= n; i += 8, p += 8) {
            std::memcpy(&w, in.data() + i, sizeof w);
            if ((w & 0x8080808080808080ull) != 0) break;
            for (int k = 0; k < 8; ++k) p[k] = static_cast<unsigned char>(in[i + k]);
        }
        if (i == n) break;
        const auto c = static_cast<unsigned char>(in[i]);
        if (c < 0x80) {
            *p++ = c;
            ++i;
            continue;
        }
        char32_t cp;
        std::size_t len;
        if ((c & 0xE0) == 0xC0) {
            cp = c & 0x1F;
            len = 2;
        } else if ((c & 0xF0) == 0xE0) {
            cp = c & 0x0F;
            len = 3;
        } else if ((c & 0xF8) == 0xF0) {
            cp = c & 0x07;
            len = 4;
        } else {
            *p++ = u'\xFFFD';
            ++i;
            continue;
        }
        bool ok = i + len <= n;
        for (std::size_t k = 1; ok && k < len; ++k) {
            const auto cc = static_cast<unsigned char>(in[i + k]);
            ok = (cc & 0xC0) == 0x80;
            cp = (cp << 6) | (cc & 0x3F);
        }
        static constexpr char32_t kMin[5] = {0, 0, 0x80, 0x800, 0x10000};
        if (!ok || cp < kMin[len] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            *p++ = u'\xFFFD';
            ++i;
            continue;
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            *p++ = static_cast<char16_t>(0xD800 + (cp >> 10));
            *p++ = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            *p++ = static_cast<char16_t>(cp);
        }
        i += len;
    }
    out.resize(static_cast<std::size_t>(p - out.data()));
    return out;
}

}  // namespace qm::xml
