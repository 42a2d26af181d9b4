#include "onenote/fmt_markup.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "onenote/fmt_quick_reader.h"
#include "onenote/fmt_schema.h"
#include "xml/xml_error.h"

namespace qm::onenote {

namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }
bool IsLineBreak(char16_t c) { return c == u'\n' || c == u'\r'; }
bool IsAsciiLetter(char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }
bool IsAsciiDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// Step 1: the text without the indentation around it.
std::u16string_view WithoutFrame(std::u16string_view content) {
    std::size_t begin = 0;
    bool lineBreak = false;
    while (begin < content.size() && IsBlank(content[begin])) lineBreak |= IsLineBreak(content[begin++]);
    if (lineBreak) content.remove_prefix(begin);
    std::size_t end = content.size();
    lineBreak = false;
    while (end > 0 && IsBlank(content[end - 1])) lineBreak |= IsLineBreak(content[--end]);
    if (lineBreak) content = content.substr(0, end);
    return content;
}

// The length of a line-break tag at the start of `text` ("<br>", "<BR/>", "<br />"), or 0.
std::size_t LineBreakTag(std::u16string_view text) {
    if (text.size() < 4 || text[0] != u'<' || (text[1] != u'b' && text[1] != u'B') ||
        (text[2] != u'r' && text[2] != u'R')) {
        return 0;
    }
    std::size_t i = 3;
    while (i < text.size() && IsBlank(text[i])) ++i;
    if (i < text.size() && text[i] == u'/') ++i;
    return i < text.size() && text[i] == u'>' ? i + 1 : 0;
}

// Step 2, in one pass: no replacement can make or break a match of the other kind.
std::u16string ReplaceBreaksAndSpaces(std::u16string_view content) {
    static constexpr std::u16string_view kNbsp = u"&nbsp;";
    std::u16string out;
    out.reserve(content.size());
    for (std::size_t i = 0; i < content.size();) {
        std::size_t special = i;
        while (special < content.size() && content[special] != u'<' && content[special] != u'&') ++special;
        out.append(content.substr(i, special - i));
        i = special;
        if (i == content.size()) break;
        if (const std::size_t tag = content[i] == u'<' ? LineBreakTag(content.substr(i)) : 0) {
            out += u'\n';
            i += tag;
        } else if (content.substr(i).starts_with(kNbsp)) {
            out += u' ';
            i += kNbsp.size();
        } else {
            out += content[i++];
        }
    }
    return out;
}

// Whether step 2 has anything to replace (or may have: any tag starting "<b").
bool HasBreaksOrHardSpaces(std::u16string_view text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == u'<' && (text[i + 1] == u'b' || text[i + 1] == u'B')) return true;
        if (text[i] == u'&' && text.substr(i).starts_with(u"&nbsp;")) return true;
    }
    return false;
}

// Whether `text` starts with a character or entity reference ("&amp;", "&#10;").
bool StartsWithReference(std::u16string_view text) {
    std::size_t i = 1;
    if (i < text.size() && text[i] == u'#') ++i;
    const std::size_t first = i;
    while (i < text.size() && (IsAsciiLetter(text[i]) || IsAsciiDigit(text[i]))) ++i;
    return i > first && i < text.size() && text[i] == u';';
}

// An attribute value that had no quotes, quoted and escaped as XML needs it.
void AppendQuoted(std::u16string& out, std::u16string_view value) {
    const char16_t quote = value.find(u'"') == std::u16string_view::npos ? u'"' : u'\'';
    out += quote;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char16_t c = value[i];
        if (c == u'<') {
            out += u"&lt;";
        } else if (c == u'&' && !StartsWithReference(value.substr(i))) {
            out += u"&amp;";
        } else if (c == quote) {
            out += u"&quot;";
        } else {
            out += c;
        }
    }
    out += quote;
}

// Copies text[i..] up to and including `close` (or to the end) and returns the new position.
std::size_t CopyThrough(std::u16string& out, std::u16string_view text, std::size_t i, std::u16string_view close) {
    const std::size_t found = text.find(close, i);
    const std::size_t end = found == std::u16string_view::npos ? text.size() : found + close.size();
    out.append(text.substr(i, end - i));
    return end;
}

// Copies a start tag from its "<" and returns the position after it, quoting unquoted values.
std::size_t CopyStartTag(std::u16string& out, std::u16string_view text, std::size_t i) {
    out += text[i++];
    while (i < text.size() && text[i] != u'>') {
        const char16_t c = text[i];
        if (c == u'"' || c == u'\'') {
            const std::size_t close = text.find(c, i + 1);
            const std::size_t end = close == std::u16string_view::npos ? text.size() : close + 1;
            out.append(text.substr(i, end - i));
            i = end;
        } else if (c == u'=') {
            out += text[i++];
            while (i < text.size() && IsBlank(text[i])) out += text[i++];
            if (i < text.size() && text[i] != u'"' && text[i] != u'\'' && text[i] != u'>') {
                const std::size_t begin = i;
                while (i < text.size() && !IsBlank(text[i]) && text[i] != u'>') ++i;
                AppendQuoted(out, text.substr(begin, i - begin));
            }
        } else {
            out += text[i++];
        }
    }
    if (i < text.size()) out += text[i++];
    return i;
}

// Step 3.
std::u16string QuoteAttributeValues(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size() + 16);
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != u'<') {
            const std::size_t next = std::min(text.find(u'<', i), text.size());
            out.append(text.substr(i, next - i));
            i = next;
            continue;
        }
        const std::u16string_view rest = text.substr(i);
        if (rest.starts_with(u"<!--")) {
            i = CopyThrough(out, text, i, u"-->");
        } else if (rest.starts_with(u"<![CDATA[")) {
            i = CopyThrough(out, text, i, u"]]>");
        } else if (rest.starts_with(u"<?") || rest.starts_with(u"<!")) {
            i = CopyThrough(out, text, i, u">");
        } else if (rest.size() > 1 && IsAsciiLetter(rest[1])) {
            i = CopyStartTag(out, text, i);
        } else {
            out += text[i++];
        }
    }
    return out;
}

// --- the tree into runs -----------------------------------------------------------------------

struct Frame {
    const std::vector<FMT::Item>* items;
    std::size_t next;
    const void* element;  // the innermost span or a: the chain's identity
    TextFormat format;
};

TextFormat Inner(const TextFormat& outer, const FMT::span& span) {
    TextFormat format = outer;
    if (span.style) MergeCss(format.style, ParseCss(*span.style));
    if (span.lang && !span.lang->empty()) format.lang = *span.lang;
    return format;
}

TextFormat Inner(const TextFormat& outer, const FMT::a& anchor) {
    TextFormat format = outer;
    if (anchor.href && !anchor.href->empty()) format.href = *anchor.href;
    return format;
}

// Raised when the runs would take far more room than the markup they come from.
struct TooManyFormats {};

std::size_t SizeOf(const TextFormat& format) {
    std::size_t size = 1 + (format.lang ? format.lang->size() : 0) + (format.href ? format.href->size() : 0);
    for (const CssDeclaration& d : format.style) size += d.name.size() + d.value.size() + 2;
    return size;
}

// Walks the tree in document order without recursion (the reader bounds its depth, the walk
// needs no stack of its own). Each run carries its whole formatting, which nesting repeats: a
// long link around many small spans, deep nesting under long styles. The formatting held at once
// is therefore bounded by a multiple of the markup's size, and markup beyond it is unreadable.
std::vector<TextRun> RunsOf(const FMT::Text& root, std::size_t markupSize) {
    std::size_t budget = 32 * markupSize + 65536;
    const auto spend = [&](std::size_t size) {
        if (size > budget) throw TooManyFormats{};
        budget -= size;
    };
    std::vector<TextRun> runs;
    const void* lastElement = nullptr;
    std::vector<Frame> stack;
    stack.push_back(Frame{&root.content, 0, &root, TextFormat{}});
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next == top.items->size()) {
            stack.pop_back();
            continue;
        }
        const FMT::Item& item = (*top.items)[top.next++];
        if (const auto* text = std::get_if<std::u16string>(&item)) {
            if (text->empty()) continue;
            if (!runs.empty() && lastElement == top.element) {
                runs.back().text += *text;
            } else {
                spend(SizeOf(top.format));
                runs.push_back(TextRun{*text, top.format});
                lastElement = top.element;
            }
        } else if (const auto* span = std::get_if<std::shared_ptr<FMT::span>>(&item)) {
            if (!*span) continue;
            spend(SizeOf(top.format) + ((*span)->style ? (*span)->style->size() : 0));
            stack.push_back(Frame{&(*span)->content, 0, span->get(), Inner(top.format, **span)});
        } else if (const auto* anchor = std::get_if<std::shared_ptr<FMT::a>>(&item)) {
            if (!*anchor) continue;
            spend(SizeOf(top.format) + ((*anchor)->href ? (*anchor)->href->size() : 0));
            stack.push_back(Frame{&(*anchor)->content, 0, anchor->get(), Inner(top.format, **anchor)});
        }
    }
    return runs;
}

// --- writing ----------------------------------------------------------------------------------

constexpr char16_t kReplacement = u'\xFFFD';

// Which spaces are written as "&nbsp;" (see the file comment).
std::vector<bool> HardSpaces(std::u16string_view text) {
    std::vector<bool> hard(text.size(), false);
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != u' ') {
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < text.size() && text[end] == u' ') ++end;
        const bool atEdge = i == 0 || text[i - 1] == u'\n' || end == text.size() || text[end] == u'\n';
        for (std::size_t k = i; k < end; ++k) hard[k] = atEdge || k + 1 < end;
        i = end;
    }
    return hard;
}

void AppendText(std::u16string& out, std::u16string_view text, const std::vector<bool>& hard, std::size_t offset) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        switch (c) {
            case u'&': out += u"&amp;"; break;
            case u'<': out += u"&lt;"; break;
            case u'>': out += u"&gt;"; break;
            case u'"': out += u"&quot;"; break;
            case u'\n': out += u"<br>"; break;
            case u'\r': out += u"&#13;"; break;
            case u' ': out += hard[offset + i] ? u"&nbsp;" : u" "; break;
            case u'\0': out += kReplacement; break;
            default: out += c; break;
        }
    }
}

void AppendAttributeValue(std::u16string& out, std::u16string_view value, char16_t quote) {
    out += quote;
    for (const char16_t c : value) {
        switch (c) {
            case u'&': out += u"&amp;"; break;
            case u'<': out += u"&lt;"; break;
            case u'>': out += u"&gt;"; break;
            case u'\n': out += u"&#10;"; break;
            case u'\r': out += u"&#13;"; break;
            case u'\t': out += u"&#9;"; break;
            case u'\0': out += kReplacement; break;
            default:
                if (c == quote) {
                    out += c == u'"' ? u"&quot;" : u"&#39;";
                } else {
                    out += c;
                }
                break;
        }
    }
    out += quote;
}

// A language tag such as en-US is written without quotes, as OneNote does.
bool IsPlainToken(std::u16string_view value) {
    if (value.empty()) return false;
    for (const char16_t c : value) {
        if (!IsAsciiLetter(c) && !IsAsciiDigit(c) && c != u'-' && c != u'_') return false;
    }
    return true;
}

void AppendSpanStart(std::u16string& out, const TextFormat& format) {
    out += u"<span";
    if (!format.style.empty()) {
        out += u" style=";
        AppendAttributeValue(out, FormatCss(format.style), u'\'');
    }
    if (format.lang) {
        out += u" lang=";
        if (IsPlainToken(*format.lang)) {
            out += *format.lang;
        } else {
            AppendAttributeValue(out, *format.lang, u'\'');
        }
    }
    out += u'>';
}

// The runs of the markup, read afresh.
FormattedText ReadMarkup(std::u16string_view content) {
    static constexpr std::u16string_view kOpen = u"<?xml version=\"1.0\"?><Text>", kClose = u"</Text>";
    FormattedText result;
    // Markup without line breaks and hard spaces is its own preparation when the direct reader
    // takes it (it takes quoted attribute values only, and only they are left as they are).
    const std::u16string_view framed = WithoutFrame(content);
    std::shared_ptr<FMT::Text> tree = HasBreaksOrHardSpaces(framed) ? nullptr : ReadSimpleMarkup(framed);
    const std::u16string prepared = tree ? std::u16string() : PrepareMarkup(content);
    const std::size_t documentSize = kOpen.size() + (tree ? framed.size() : prepared.size()) + kClose.size();
    try {
        if (!tree) tree = ReadSimpleMarkup(prepared);
        if (!tree) {
            std::u16string document(kOpen);
            document += prepared;
            document += kClose;
            tree = FMT::ParseText(document);
        }
        result.runs = RunsOf(*tree, documentSize);
    } catch (const xml::XmlError&) {
        result.readable = false;
    } catch (const TooManyFormats&) {
        result.readable = false;
    }
    if (!result.readable) {
        result.runs.clear();
        if (!framed.empty()) result.runs.push_back(TextRun{std::u16string(framed), TextFormat{}});
    }
    return result;
}

}  // namespace

std::u16string PrepareMarkup(std::u16string_view content) {
    return QuoteAttributeValues(ReplaceBreaksAndSpaces(WithoutFrame(content)));
}

FormattedText ParseMarkup(std::u16string_view content) {
    // Changing a paragraph's text reads its markup three times (the macro reads the value, the
    // write compares it with the old one and keeps the old formatting): the last markup read is
    // remembered with its runs.
    struct LastRead {
        std::u16string content;
        FormattedText runs;
    };
    thread_local LastRead last;
    if (!last.content.empty() && content == last.content) return last.runs;
    FormattedText runs = ReadMarkup(content);
    last.runs = runs;
    last.content = content;
    return runs;
}

std::u16string WriteMarkup(const FormattedText& text) {
    FormattedText joined = text;
    joined.Normalize();
    const std::u16string plain = joined.PlainText();
    const std::vector<bool> hard = HardSpaces(plain);
    std::u16string out;
    out.reserve(plain.size() + 32 * joined.runs.size());
    const std::u16string* openLink = nullptr;
    std::size_t offset = 0;
    for (const TextRun& run : joined.runs) {
        const std::u16string* link = run.format.href ? &*run.format.href : nullptr;
        if (openLink && (!link || *link != *openLink)) {
            out += u"</a>";
            openLink = nullptr;
        }
        if (link && !openLink) {
            out += u"<a href=";
            AppendAttributeValue(out, *link, u'"');
            out += u'>';
            openLink = link;
        }
        const bool span = !run.format.style.empty() || run.format.lang;
        if (span) AppendSpanStart(out, run.format);
        AppendText(out, run.text, hard, offset);
        if (span) out += u"</span>";
        offset += run.text.size();
    }
    if (openLink) out += u"</a>";
    return out;
}

}  // namespace qm::onenote
