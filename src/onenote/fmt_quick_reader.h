// A direct reader for the markup of nearly every text element: text, the five named references
// and character references, and `span` and `a` elements with quoted attributes (style and lang,
// href). Reading it through the XML reader costs a parser, with its buffers and dictionary, per
// text element, several times the work of the reading itself; this reads the prepared fragment
// (fmt_markup.h, steps 1 to 3) straight into the tree the FMT binding would build.
//
// It gives up, returning null, on anything else: comments, CDATA sections, processing
// instructions, other elements or attributes, a repeated attribute, other references, carriage
// returns and null characters, code points of the last private-use plane, nesting deeper than
// 64, and whatever is not well-formed. The XML reader then reads the fragment and decides, so the
// result is always the one it would give.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "onenote/fmt_run_builder.h"
#include "onenote/fmt_schema.h"

namespace qm::onenote {

std::shared_ptr<FMT::Text> ReadSimpleMarkup(std::u16string_view prepared);

// The runs of the same markup, made as it is read, without the tree: RunsOfTree of
// ReadSimpleMarkup's tree, and null where that is. Raises TooManyFormats as RunsOfTree does.
std::optional<std::vector<TextRun>> ReadSimpleRuns(std::u16string_view prepared, std::size_t markupSize);
// Their summary (SummaryBuilder): the plain text and the first formatting, null where
// ReadSimpleRuns is; TooManyFormats when ReadSimpleRuns might raise it.
std::optional<TextSummary> ReadSimpleSummary(std::u16string_view prepared, std::size_t markupSize);

}  // namespace qm::onenote
