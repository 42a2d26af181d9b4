#include "onenote/plain_text.h"
#include "core/code_point.h"

#include <cstdint>

namespace qm::onenote {

namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

bool StartsWithNoCase(std::u16string_view text, std::u16string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        char16_t c = text[i];
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
        if (c != prefix[i]) return false;
    }
    return true;
}

// The character an entity at text[0] ('&') stands for, and its length; nothing when it is none.
bool DecodeEntity(std::u16string_view text, std::u16string& out, std::size_t& length) {
    const std::size_t end = text.find(u';');
    if (end == std::u16string_view::npos || end > 10) return false;
    const std::u16string_view name = text.substr(1, end - 1);
    static constexpr std::pair<std::u16string_view, char16_t> kNamed[] = {
        {u"nbsp", u' '}, {u"lt", u'<'}, {u"gt", u'>'}, {u"amp", u'&'}, {u"quot", u'"'}, {u"apos", u'\''}};
    for (const auto& [entity, c] : kNamed) {
        if (name == entity) {
            out += c;
            length = end + 1;
            return true;
        }
    }
    if (name.size() < 2 || name[0] != u'#') return false;
    const bool hex = name[1] == u'x' || name[1] == u'X';
    std::uint32_t value = 0;
    for (std::size_t i = hex ? 2 : 1; i < name.size(); ++i) {
        const char16_t c = name[i];
        int digit = -1;
        if (c >= u'0' && c <= u'9') digit = c - u'0';
        if (hex && c >= u'a' && c <= u'f') digit = c - u'a' + 10;
        if (hex && c >= u'A' && c <= u'F') digit = c - u'A' + 10;
        if (digit < 0 || value > 0x10FFFF) return false;
        value = value * (hex ? 16 : 10) + static_cast<std::uint32_t>(digit);
    }
    if (value == 0 || value > 0x10FFFF) return false;
    length = end + 1;
    AppendCodePoint(out, value);
    return true;
}

}  // namespace

std::u16string PlainText(std::u16string_view markup) {
    std::u16string out;
    for (std::size_t i = 0; i < markup.size();) {
        const char16_t c = markup[i];
        if (c == u'<') {
            const std::size_t end = markup.find(u'>', i);
            if (end == std::u16string_view::npos) break;
            if (StartsWithNoCase(markup.substr(i), u"<br")) out += u'\n';
            i = end + 1;
        } else if (c == u'&') {
            std::size_t length = 1;
            if (!DecodeEntity(markup.substr(i), out, length)) out += c;
            i += length;
        } else {
            out += c == u'\n' || c == u'\r' ? u' ' : c;
            ++i;
        }
    }
    std::size_t first = 0, last = out.size();
    while (first < last && IsBlank(out[first])) ++first;
    while (last > first && IsBlank(out[last - 1])) --last;
    return out.substr(first, last - first);
}

std::u16string ParagraphText(const ON::OE& paragraph) {
    std::u16string text;
    for (const auto& content : paragraph.content) {
        if (content->t) text += PlainText(content->t->text);
    }
    return text;
}

std::u16string TitleText(const ON::Page& page) {
    if (!page.title || !page.title->oe) return {};
    return ParagraphText(*page.title->oe);
}

}  // namespace qm::onenote
