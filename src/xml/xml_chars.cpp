#include "xml/xml_chars.h"

namespace qm::xml {

namespace {

constexpr char32_t kShieldBase = 0x100000;

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void AppendShielded(std::u16string& out, char16_t c) {
    const char32_t shielded = kShieldBase + c - 0x10000;
    out += static_cast<char16_t>(0xD800 + (shielded >> 10));
    out += static_cast<char16_t>(0xDC00 + (shielded & 0x3FF));
}

// A character reference "&#...;" at text[i]: its length and code point when it is one.
std::optional<std::pair<std::size_t, char32_t>> CharacterReference(std::u16string_view text, std::size_t i) {
    std::size_t j = i + 2;
    const bool hex = j < text.size() && text[j] == u'x';
    if (hex) ++j;
    const std::size_t digitsStart = j;
    char32_t value = 0;
    for (; j < text.size() && j - digitsStart < 8; ++j) {
        const char16_t c = text[j];
        int digit;
        if (c >= u'0' && c <= u'9') {
            digit = c - u'0';
        } else if (hex && c >= u'a' && c <= u'f') {
            digit = c - u'a' + 10;
        } else if (hex && c >= u'A' && c <= u'F') {
            digit = c - u'A' + 10;
        } else {
            break;
        }
        value = value * (hex ? 16 : 10) + static_cast<char32_t>(digit);
    }
    if (j == digitsStart || j >= text.size() || text[j] != u';') return std::nullopt;
    return std::pair{j + 1 - i, value};
}

}  // namespace

bool IsXmlChar(std::u16string_view text, std::size_t i) {
    const char16_t c = text[i];
    if (c < 0x20) return c == u'\t' || c == u'\n' || c == u'\r';
    if (IsHighSurrogate(c)) return i + 1 < text.size() && IsLowSurrogate(text[i + 1]);
    if (IsLowSurrogate(c)) return i > 0 && IsHighSurrogate(text[i - 1]);
    return c != 0xFFFE && c != 0xFFFF;
}

bool IsShieldable(char32_t c) {
    if (c < 0x20) return c != 0 && c != u'\t' && c != u'\n' && c != u'\r';
    return (c >= 0xD800 && c <= 0xDFFF) || c == 0xFFFE || c == 0xFFFF;
}

std::optional<char16_t> Unshield(char32_t c) {
    if (c < kShieldBase || c > kShieldBase + 0xFFFF) return std::nullopt;
    const char32_t unit = c - kShieldBase;
    if (!IsShieldable(unit)) return std::nullopt;
    return static_cast<char16_t>(unit);
}

std::optional<std::u16string> ShieldIllegalCharacters(std::u16string_view text) {
    std::u16string out;
    bool changed = false;
    std::size_t copied = 0;  // text[copied..i) is still to be copied
    auto flushTo = [&](std::size_t end) {
        if (!changed) {
            changed = true;
            out.reserve(text.size() + 16);
        }
        out.append(text.substr(copied, end - copied));
    };
    // Skips a section that character references do not occur in; raw characters inside it are
    // still shielded by the main loop, so the section is only marked, not copied.
    std::size_t quietUntil = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'<' && i >= quietUntil) {
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
            continue;
        }
        if (c == u'&' && i >= quietUntil && i + 1 < text.size() && text[i + 1] == u'#') {
            const auto reference = CharacterReference(text, i);
            if (reference && reference->second <= 0xFFFF && IsShieldable(reference->second)) {
                flushTo(i);
                AppendShielded(out, static_cast<char16_t>(reference->second));
                i += reference->first - 1;
                copied = i + 1;
            }
            continue;
        }
        if (!IsXmlChar(text, i) && c != 0) {
            flushTo(i);
            AppendShielded(out, c);
            copied = i + 1;
        }
    }
    if (!changed) return std::nullopt;
    out.append(text.substr(copied));
    return out;
}

}  // namespace qm::xml
