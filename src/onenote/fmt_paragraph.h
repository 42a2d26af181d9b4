// Formatted text at the level of text elements (ON::T) and paragraphs (ON::OE): reading the runs
// of an element, storing changed runs back, a paragraph's whole text, the paragraph-wide
// formatting properties, and the text search behind QueryText.
//
// A paragraph usually holds one text element; OneNote splits its text into several when only part
// of it is selected. A paragraph's text is then the texts of its elements one after the other,
// and indices run on across them (OffsetInParagraph).
//
// Storing changes: an element's text is rewritten only when its runs (joined as
// FormattedText::Normalize does) differ from what it held, so that a write of the value a run
// already has changes nothing on the page. The caller marks the page modified when a function
// here reports a change.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/value.h"
#include "onenote/fmt_properties.h"
#include "onenote/fmt_runs.h"
#include "onenote/on_schema.h"

namespace qm::onenote {

FormattedText ReadRuns(const ON::T& t);
// The same runs, shared with the last reading of the same text (fmt_markup.h).
std::shared_ptr<const FormattedText> ReadRunsShared(const ON::T& t);
// Stores `after` as the element's text when it differs from `before` (the runs the element
// held); true when the text changed. A rewritten element is written as CDATA, as OneNote does.
bool StoreRuns(ON::T& t, const FormattedText& before, const FormattedText& after);

// The plain text of an element's runs.
std::u16string TextOf(const ON::T& t);

// The text elements of a paragraph, in order.
std::vector<ON::T*> TextElementsOf(const ON::OE& paragraph);
// Where an element's text starts in its paragraph's text (0 when it is not in the paragraph).
std::size_t OffsetInParagraph(const ON::OE* paragraph, const ON::T& t);

// The paragraph's text: the plain texts of its elements.
std::u16string TextOfParagraph(const ON::OE& paragraph);
// Replaces the paragraph's text by `text` (line breaks "\r\n" and "\r" taken as "\n"), formatted
// as the first character it had: the first text element takes it all, the others are removed, and
// a paragraph without one gets one. True when the page changed.
bool SetTextOfParagraph(ON::OE& paragraph, std::u16string_view text);

// Applies a formatting property to all the text of an element or a paragraph; `value` as
// ConvertTextValue gives it. True when the page changed.
bool FormatAll(ON::T& t, TextProperty property, const MacroValue& value);
bool FormatParagraph(ON::OE& paragraph, TextProperty property, const MacroValue& value);

// --- searching --------------------------------------------------------------------------------

struct TextMatch {
    std::size_t start;
    std::size_t end;
};

// The places `value` occurs in `text`, left to right, not overlapping; none for an empty value.
// ignoreCase compares code units folded as the case-insensitive string functions fold them.
std::vector<TextMatch> FindMatches(std::u16string_view text, std::u16string_view value, bool ignoreCase);

// The log line of a search ("\t\tFound 3pieces of text with value 'abc").
std::u16string FoundTextLogLine(std::size_t count, std::u16string_view value);

}  // namespace qm::onenote
