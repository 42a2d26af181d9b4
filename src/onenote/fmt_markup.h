// The markup of a paragraph's text element (ON::T) read into runs and written back.
//
// Reading:
// 1. The blanks OneNote's indented page XML puts around the text (a line break and indentation
//    on both sides of the CDATA section) are not text: blanks at either end that hold a line
//    break are left out.
// 2. Every "<br>" becomes a line break ("<br/>", "<br />" and upper-case forms too), then every
//    "&nbsp;" a plain space (U+0020).
// 3. Attribute values written without quotes (OneNote writes `lang=en-US`) get quotes, so the
//    fragment is XML; nothing outside start tags is touched.
// 4. The fragment is wrapped in `<?xml version="1.0"?><Text>` ... `</Text>` and read with the FMT
//    binding (simple markup, most of it, by the direct reader of fmt_quick_reader.h, which makes
//    the runs of step 5 as it reads, with no tree). Elements other than `span` and `a` count for
//    their text only.
// 5. Each maximal stretch of characters under the same chain of `span` and `a` elements is one
//    run. Its CSS is that of its spans, outer to inner (an inner declaration wins), its language
//    that of the nearest span that has one, its link that of the nearest `a` that has an `href`.
// Markup that still does not read (broken markup from other tools, an unknown entity, nesting
// beyond the reader's limit, formatting repeated into far more than the markup's own size) is not
// an error and is never lost: the text becomes one plain run holding the stored text as it is, and
// the element keeps that text unchanged unless a macro changes it.
//
// Writing (only when a macro changed something; an unchanged element keeps its text byte for
// byte): neighbouring runs with the same formatting are joined; a run with CSS or a language is a
// `<span style='...' lang=...>` (the style in single quotes as OneNote writes it, the language
// without quotes when it is a plain tag such as en-US); consecutive runs with the same link share
// one `<a href="...">`; a line break is "<br>"; a space that HTML would fold away (at either end
// of the text or of a line, or before another space) is "&nbsp;"; &, <, > and " are escaped. No
// XML declaration or wrapper is written.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "onenote/fmt_runs.h"

namespace qm::onenote {

// Steps 1 to 3: the fragment as XML, without the wrapper.
std::u16string PrepareMarkup(std::u16string_view content);

// The runs of a text element's content.
FormattedText ParseMarkup(std::u16string_view content);
// The same runs, shared: the last content read on this thread is not read again.
std::shared_ptr<const FormattedText> ParseMarkupShared(std::u16string_view content);
// The plain text of the same runs and the formatting of their first character, shared as above.
// Markup the direct reader takes is read without making the formatting of the rest.
std::shared_ptr<const TextSummary> ParseMarkupSummary(std::u16string_view content);
// The same runs by the longer way: a tree (the direct reader's, else the XML reader's) built first
// and then walked. ParseMarkup goes this way for what the direct reader refuses or finds too
// formatted; elsewhere the two agree, which the tests and the fuzz target check.
FormattedText ReadMarkupThroughTree(std::u16string_view content);

// The markup of the runs (joined as FormattedText::Normalize does).
std::u16string WriteMarkup(const FormattedText& text);

}  // namespace qm::onenote
