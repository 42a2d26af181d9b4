#include "onenote/fmt_paragraph.h"

#include "core/value.h"
#include "onenote/fmt_markup.h"
#include "onenote/messages.h"

namespace qm::onenote {

namespace {

FormattedText Joined(FormattedText text) {
    text.Normalize();
    return text;
}

}  // namespace

FormattedText ReadRuns(const ON::T& t) { return ParseMarkup(t.text); }

bool StoreRuns(ON::T& t, const FormattedText& before, const FormattedText& after) {
    if (Joined(before).runs == Joined(after).runs) return false;
    t.text = WriteMarkup(after);
    // Through the header: CDATA is how OneNote hands text elements over and takes them back.
    xml::ChildElement& header = t;
    header.cdata = true;
    return true;
}

std::u16string TextOf(const ON::T& t) { return ReadRuns(t).PlainText(); }

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
    for (const ON::T* element : TextElementsOf(paragraph)) text += TextOf(*element);
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
    const FormattedText before = ReadRuns(*first);
    FormattedText after = before;
    after.ReplaceRange(0, after.Length(), NormalizeLineBreaks(text));
    return StoreRuns(*first, before, after) || changed;
}

bool FormatAll(ON::T& t, TextProperty property, const MacroValue& value) {
    const FormattedText before = ReadRuns(t);
    FormattedText after = before;
    after.FormatRange(0, after.Length(), [&](TextFormat& format) { WriteTextProperty(format, property, value); });
    return StoreRuns(t, before, after);
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
