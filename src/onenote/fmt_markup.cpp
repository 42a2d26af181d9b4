#include "onenote/fmt_markup.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "onenote/fmt_quick_reader.h"
#include "onenote/fmt_run_builder.h"
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

// --- writing ----------------------------------------------------------------------------------

constexpr char16_t kReplacement = u'\xFFFD';

// Whether the space at `i` is written as "&nbsp;": every space of a stretch of spaces but the last,
// and the last too when the stretch stands at either end of the text or of a line.
bool IsHardSpace(std::u16string_view text, std::size_t i) {
    if (i + 1 < text.size() && text[i + 1] == u' ') return true;
    if (i + 1 == text.size() || text[i + 1] == u'\n') return true;
    std::size_t begin = i;
    while (begin > 0 && text[begin - 1] == u' ') --begin;
    return begin == 0 || text[begin - 1] == u'\n';
}

// The characters AppendText writes otherwise than as themselves (some spaces among them).
bool IsSpecial(char16_t c) {
    return c == u'&' || c == u'<' || c == u'>' || c == u'"' || c == u'\n' || c == u'\r' || c == u' ' || c == u'\0';
}

// The characters [offset, offset + size) of the plain text.
void AppendText(std::u16string& out, std::u16string_view plain, std::size_t offset, std::size_t size) {
    std::size_t copied = offset;  // characters before it are in `out`
    for (std::size_t i = offset; i < offset + size; ++i) {
        const char16_t c = plain[i];
        if (c > u'>' || !IsSpecial(c) || (c == u' ' && !IsHardSpace(plain, i))) continue;
        out.append(plain.substr(copied, i - copied));
        copied = i + 1;
        switch (c) {
            case u'&': out += u"&amp;"; break;
            case u'<': out += u"&lt;"; break;
            case u'>': out += u"&gt;"; break;
            case u'"': out += u"&quot;"; break;
            case u'\n': out += u"<br>"; break;
            case u'\r': out += u"&#13;"; break;
            case u' ': out += IsHardSpace(plain, i) ? u"&nbsp;" : u" "; break;
            case u'\0': out += kReplacement; break;
            default: out += c; break;
        }
    }
    out.append(plain.substr(copied, offset + size - copied));
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

constexpr std::u16string_view kOpen = u"<?xml version=\"1.0\"?><Text>", kClose = u"</Text>";

std::size_t DocumentSize(std::size_t fragment) { return kOpen.size() + fragment + kClose.size(); }

FormattedText Unreadable(std::u16string_view framed) {
    FormattedText result;
    result.readable = false;
    if (!framed.empty()) result.runs.push_back(TextRun{std::u16string(framed), TextFormat{}});
    return result;
}

// What the direct reader `read` (ReadSimpleRuns or ReadSimpleSummary) gives for the markup, on the
// fragment the tree's way would read: null when it refuses. It refuses line breaks and hard
// spaces ("<br>" is not a span, "nbsp" not a reference it knows), so markup it takes is its own
// preparation, as the tree's way has it.
template <class Read>
auto ReadDirectly(std::u16string_view content, std::u16string_view framed, const Read& read) {
    auto result = read(framed, DocumentSize(framed.size()));
    if (!result) {
        const std::u16string prepared = PrepareMarkup(content);
        if (prepared != framed) result = read(prepared, DocumentSize(prepared.size()));
    }
    return result;
}

FormattedText ReadMarkup(std::u16string_view content) {
    // The direct reader makes the runs as it reads, as ReadMarkupThroughTree would from the tree
    // of the same fragment. What it refuses, and what has too many formats (whose budget depends
    // on the fragment the tree came from), is decided through the tree.
    try {
        if (auto runs = ReadDirectly(content, WithoutFrame(content), ReadSimpleRuns)) {
            FormattedText result;
            result.runs = std::move(*runs);
            return result;
        }
    } catch (const TooManyFormats&) {
    }
    return ReadMarkupThroughTree(content);
}

TextSummary Summarize(std::u16string_view content) {
    try {
        if (auto summary = ReadDirectly(content, WithoutFrame(content), ReadSimpleSummary)) return std::move(*summary);
    } catch (const TooManyFormats&) {
    }
    const auto runs = ParseMarkupShared(content);
    TextSummary summary{runs->PlainText(), TextFormat{}};
    if (const TextRun* run = runs->RunAt(0)) summary.first = run->format;
    return summary;
}

// The last markup read on this thread, with what was read of it. Changing a paragraph's text
// reads its markup twice or more (the macro reads the value, the write compares it with the old
// one and keeps the old formatting).
template <class T>
class LastReading {
public:
    template <class Read>
    std::shared_ptr<const T> Get(std::u16string_view content, const Read& read) {
        if (value_ && content.size() == content_.size() &&
            std::memcmp(content.data(), content_.data(), content.size() * sizeof(char16_t)) == 0) {
            return value_;
        }
        auto value = std::make_shared<const T>(read(content));
        value_ = nullptr;  // until the content it belongs to is in place
        content_ = content;
        value_ = value;
        return value;
    }

private:
    std::u16string content_;
    std::shared_ptr<const T> value_;
};

}  // namespace

FormattedText ReadMarkupThroughTree(std::u16string_view content) {
    FormattedText result;
    // Markup without line breaks and hard spaces is its own preparation when the direct reader
    // takes it (it takes quoted attribute values only, and only they are left as they are).
    const std::u16string_view framed = WithoutFrame(content);
    std::shared_ptr<FMT::Text> tree = HasBreaksOrHardSpaces(framed) ? nullptr : ReadSimpleMarkup(framed);
    const std::u16string prepared = tree ? std::u16string() : PrepareMarkup(content);
    const std::size_t documentSize = DocumentSize(tree ? framed.size() : prepared.size());
    try {
        if (!tree) tree = ReadSimpleMarkup(prepared);
        if (!tree) {
            std::u16string document(kOpen);
            document += prepared;
            document += kClose;
            tree = FMT::ParseText(document);
        }
        result.runs = RunsOfTree(*tree, documentSize);
    } catch (const xml::XmlError&) {
        return Unreadable(framed);
    } catch (const TooManyFormats&) {
        return Unreadable(framed);
    }
    return result;
}

std::u16string PrepareMarkup(std::u16string_view content) {
    return QuoteAttributeValues(ReplaceBreaksAndSpaces(WithoutFrame(content)));
}

std::shared_ptr<const FormattedText> ParseMarkupShared(std::u16string_view content) {
    thread_local LastReading<FormattedText> last;
    return last.Get(content, ReadMarkup);
}

std::shared_ptr<const TextSummary> ParseMarkupSummary(std::u16string_view content) {
    thread_local LastReading<TextSummary> last;
    return last.Get(content, Summarize);
}

FormattedText ParseMarkup(std::u16string_view content) { return *ParseMarkupShared(content); }

std::u16string WriteMarkup(const FormattedText& text) {
    // The runs are joined as Normalize joins them, without a copy: a stretch of neighbours with the
    // same formatting (empty runs left out) is written as one run.
    const std::vector<TextRun>& runs = text.runs;
    std::u16string joined;
    if (runs.size() > 1) {
        joined.reserve(text.Length());
        for (const TextRun& run : runs) joined += run.text;
    }
    const std::u16string_view plain = runs.size() == 1 ? std::u16string_view(runs[0].text) : joined;
    std::u16string out;
    out.reserve(plain.size() + 32 * runs.size());
    const std::u16string* openLink = nullptr;
    std::size_t offset = 0;
    for (std::size_t i = 0; i < runs.size();) {
        if (runs[i].text.empty()) {
            ++i;
            continue;
        }
        const TextFormat& format = runs[i].format;
        std::size_t end = i + 1;
        while (end < runs.size() && (runs[end].text.empty() || runs[end].format == format)) ++end;
        const std::u16string* link = format.href ? &*format.href : nullptr;
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
        const bool span = !format.style.empty() || format.lang;
        if (span) AppendSpanStart(out, format);
        for (; i < end; ++i) {
            AppendText(out, plain, offset, runs[i].text.size());
            offset += runs[i].text.size();
        }
        if (span) out += u"</span>";
    }
    if (openLink) out += u"</a>";
    return out;
}

}  // namespace qm::onenote
