#include "xml/xml_strings.h"

#include <array>
#include <sstream>
#include <string>

#include "core/text.h"

namespace qm::xml {

namespace {

// The stream readers below work on a narrow copy of the text with one character per code unit,
// so that the separators (consumed one code unit at a time) line up with the original.
std::string NarrowForStream(std::u16string_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (char16_t c : text) narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    return narrow;
}

void AppendPadded(std::u16string& out, unsigned value, std::size_t width) {
    std::u16string digits = Ascii(std::to_string(value));
    if (digits.size() < width) out.append(width - digits.size(), u'0');
    out += digits;
}

}  // namespace

std::u16string FormatXmlBool(bool value) { return value ? u"true" : u"false"; }

bool ParseXmlBool(std::u16string_view text) { return text == u"true" || text == u"True" || text == u"1"; }

std::u16string FormatXmlDateTime(const SystemTime& t) {
    std::u16string out;
    out.reserve(24);
    AppendPadded(out, t.wYear, 2);
    out += u'-';
    AppendPadded(out, t.wMonth, 2);
    out += u'-';
    AppendPadded(out, t.wDay, 2);
    out += u'T';
    AppendPadded(out, t.wHour, 2);
    out += u':';
    AppendPadded(out, t.wMinute, 2);
    out += u':';
    AppendPadded(out, t.wSecond, 2);
    out += u'.';
    AppendPadded(out, t.wMilliseconds, 3);
    out += u'Z';
    return out;
}

SystemTime ParseXmlDateTime(std::u16string_view text) {
    SystemTime t{};
    std::istringstream in(NarrowForStream(text));
    const std::array<std::uint16_t*, 7> fields{&t.wYear,   &t.wMonth,  &t.wDay,         &t.wHour,
                                               &t.wMinute, &t.wSecond, &t.wMilliseconds};
    for (std::uint16_t* field : fields) {
        std::uint16_t value = 0;
        if (!(in >> value)) break;
        *field = value;
        in.get();
    }
    return t;
}

std::u16string FormatXmlInt(std::int32_t value) { return Ascii(std::to_string(value)); }

std::int32_t ParseXmlInt(std::u16string_view text) {
    std::istringstream in(NarrowForStream(text));
    std::int32_t value = 0;
    in >> value;  // a failed or out-of-range read leaves 0 or the saturated value
    return value;
}

std::u16string EscapeXml(std::u16string_view text) {
    if (text.find_first_of(u"<>\"&") == std::u16string_view::npos) return std::u16string(text);
    std::u16string out;
    out.reserve(text.size() + 16);
    for (char16_t c : text) {
        switch (c) {
            case u'<': out += u"&lt;"; break;
            case u'>': out += u"&gt;"; break;
            case u'"': out += u"&quot;"; break;
            case u'&': out += u"&amp;"; break;
            default: out += c;
        }
    }
    return out;
}

std::u16string UnescapeXml(std::u16string_view text) {
    if (text.find(u'&') == std::u16string_view::npos) return std::u16string(text);
    static constexpr std::array<std::pair<std::u16string_view, char16_t>, 4> kEntities{{
        {u"lt;", u'<'}, {u"gt;", u'>'}, {u"quot;", u'"'}, {u"amp;", u'&'}}};
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'&' && i + 1 < text.size()) {
            const std::u16string_view rest = text.substr(i + 1);
            bool replaced = false;
            for (const auto& [suffix, ch] : kEntities) {
                if (rest.starts_with(suffix)) {
                    out += ch;
                    i += suffix.size();
                    replaced = true;
                    break;
                }
            }
            if (replaced) continue;
        }
        out += c;
    }
    return out;
}

std::u16string EscapeAmpersands(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && !(i + 1 < text.size() && text[i + 1] == u'#')) {
            out += u"&amp;";
        } else {
            out += text[i];
        }
    }
    return out;
}

std::u16string UnescapeAmpersands(std::u16string_view text) {
    static constexpr std::u16string_view kAmp = u"&amp;";
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::u16string_view rest = text.substr(i);
        if (rest.starts_with(kAmp) && !(rest.size() > kAmp.size() && rest[kAmp.size()] == u'#')) {
            out += u'&';
            i += kAmp.size() - 1;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace qm::xml
