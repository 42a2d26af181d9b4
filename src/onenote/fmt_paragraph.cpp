#include "onenote/fmt_paragraph.h"

#include <algorithm>

#include "core/value.h"
#include "onenote/fmt_markup.h"
#include "onenote/messages.h"

namespace qm::onenote {

namespace {

// Whether the two hold the same characters formatted alike, which is when Normalize makes them
// equal: the joined form is the characters cut where the formatting changes. Walked without a copy.
bool SameWhenJoined(const std::vector<TextRun>& a, const std::vector<TextRun>& b) {
    std::size_t i = 0, j = 0, atA = 0, atB = 0;  // runs and offsets in them
    for (;;) {
        while (i < a.size() && atA == a[i].text.size()) ++i, atA = 0;
        while (j < b.size() && atB == b[j].text.size()) ++j, atB = 0;
        if (i == a.size() || j == b.size()) return i == a.size() && j == b.size();
        if (!(a[i].format == b[j].format)) return false;
        const std::size_t size = std::min(a[i].text.size() - atA, b[j].text.size() - atB);
        if (a[i].text.compare(atA, size, b[j].text, atB, size) != 0) return false;
        atA += size;
        atB += size;
    }
}

void Write(ON::T& t, const FormattedText& runs) {
    t.text = WriteMarkup(runs);
    // Through the header: CDATA is how OneNote hands text elements over and takes them back.
    xml::ChildElement& header = t;
    header.cdata = true;
}

}  // namespace

FormattedText ReadRuns(const ON::T& t) { return ParseMarkup(t.text); }

std::shared_ptr<const FormattedText> ReadRunsShared(const ON::T& t) { return ParseMarkupShared(t.text); }

bool StoreRuns(ON::T& t, const FormattedText& before, const FormattedText& after) {
    if (SameWhenJoined(before.runs, after.runs)) return false;
    Write(t, after);
    return true;
}

std::u16string TextOf(const ON::T& t) { return ParseMarkupSummary(t.text)->plain; }

std::vector<ON::T*> TextElementsOf(const ON::OE& paragraph) {
    std::vector<ON::T*> elements;
    for (const auto& choice : paragraph.content) {
        if (choice && choice->t) elements.push_back(choice->t.get());
    }
    return elements;
}

std::size_t OffsetInParagraph(const ON::OE* paragraph, const ON::T& t) {
    if (!paragraph) return 0;
    std::size_t offset = 0;
    for (const ON::T* element : TextElementsOf(*paragraph)) {
        if (element == &t) return offset;
        offset += TextOf(*element).size();
    }
    return 0;
}

std::u16string TextOfParagraph(const ON::OE& paragraph) {
    std::u16string text;
    for (const auto& choice : paragraph.content) {
        if (!choice || !choice->t) continue;
        text += ParseMarkupSummary(choice->t->text)->plain;
    }
    return text;
}

bool SetTextOfParagraph(ON::OE& paragraph, std::u16string_view text) {
    bool changed = false;
    ON::T* first = nullptr;
    for (std::size_t i = 0; i < paragraph.content.size();) {
        const auto& choice = paragraph.content[i];
        if (choice && choice->t && first != nullptr) {
            paragraph.content.Remove(i);
            changed = true;
            continue;
        }
        if (choice && choice->t) first = choice->t.get();
        ++i;
    }
    if (first == nullptr) {
        auto choice = std::make_shared<ON::OEChoice>();
        choice->t = ON::New<ON::T>();
        choice->t->owner = choice.get();
        first = choice->t.get();
        paragraph.content.Add(std::move(choice));
        changed = true;
    }
    // All the text replaced: one run, formatted as the first character was (ReplaceRange over the
    // whole text, without the runs it drops). Other characters are a change whatever the formatting;
    // only the same characters need the runs to tell.
    const std::shared_ptr<const TextSummary> before = ParseMarkupSummary(first->text);
    FormattedText after;
    after.runs.push_back(TextRun{NormalizeLineBreaks(text), before->first});
    if (after.runs[0].text != before->plain) {
        Write(*first, after);
        return true;
    }
    return StoreRuns(*first, *ReadRunsShared(*first), after) || changed;
}

bool FormatAll(ON::T& t, TextProperty property, const MacroValue& value) {
    const std::shared_ptr<const FormattedText> before = ReadRunsShared(t);
    FormattedText after = *before;
    after.FormatRange(0, after.Length(), [&](TextFormat& format) { WriteTextProperty(format, property, value); });
    return StoreRuns(t, *before, after);
}

bool FormatParagraph(ON::OE& paragraph, TextProperty property, const MacroValue& value) {
    bool changed = false;
    for (ON::T* element : TextElementsOf(paragraph)) changed = FormatAll(*element, property, value) || changed;
    return changed;
}

// --- searching --------------------------------------------------------------------------------

// Knuth-Morris-Pratt over the folded units: linear in the text whatever the value holds.
std::vector<TextMatch> FindMatches(std::u16string_view text, std::u16string_view value, bool ignoreCase) {
    std::vector<TextMatch> matches;
    if (value.empty() || value.size() > text.size()) return matches;
    auto fold = [&](char16_t c) { return ignoreCase ? LowerCaseUnit(c) : c; };
    std::u16string pattern(value);
    for (char16_t& c : pattern) c = fold(c);
    std::vector<std::size_t> border(pattern.size() + 1, 0);
    for (std::size_t i = 1, k = 0; i < pattern.size(); ++i) {
        while (k > 0 && pattern[i] != pattern[k]) k = border[k];
        if (pattern[i] == pattern[k]) ++k;
        border[i + 1] = k;
    }
    for (std::size_t i = 0, k = 0; i < text.size(); ++i) {
        const char16_t c = fold(text[i]);
        while (k > 0 && c != pattern[k]) k = border[k];
        if (c == pattern[k]) ++k;
        if (k == pattern.size()) {
            matches.push_back(TextMatch{i + 1 - k, i + 1});
            k = 0;  // matches do not overlap
        }
    }
    return matches;
}

std::u16string FoundTextLogLine(std::size_t count, std::u16string_view value) {
    std::u16string line(msg::kLogFound);
    line += IntegerText(static_cast<std::int64_t>(count));
    line += msg::kLogPiecesOfText;
    line += value;
    return line;
}

}  // namespace qm::onenote
