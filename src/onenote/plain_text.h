// The plain text of OneNote's run markup, for page names and readable listings. This is a small
// stripping, not the formatted-text reading of runs: tags are dropped, "<br>" becomes a line
// break while line breaks in the markup itself are blanks (as in HTML), entities become their
// characters ("&nbsp;" a plain space), and the blanks around the whole text (indentation of the
// XML it came from) are trimmed.
#pragma once

#include <string>
#include <string_view>

#include "onenote/on_schema.h"

namespace qm::onenote {

std::u16string PlainText(std::u16string_view markup);

// The texts of a paragraph's runs, one after the other.
std::u16string ParagraphText(const ON::OE& paragraph);

// The text of a page's title; empty when it has none.
std::u16string TitleText(const ON::Page& page);

}  // namespace qm::onenote
