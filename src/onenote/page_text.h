// The text of paragraphs and of paragraph lists (an outline's, a cell's) as the page objects read
// and write it: one line per paragraph, in document order, nested paragraphs included.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/value.h"
#include "onenote/on_schema.h"

namespace qm::onenote {

class Session;
struct LoadedPage;

// The characters of a paragraph's text runs.
std::u16string ParagraphTextOf(const ON::OE& paragraph);
// Replaces the paragraph's text by plain text (line breaks kept as line breaks).
void SetParagraphTextOf(ON::OE& paragraph, std::u16string_view text);

// Applies one of the paragraph-wide formatting properties (fontName ... lang) to all the text of
// the paragraph; the value has the property's kind.
void ApplyParagraphFormat(ON::OE& paragraph, std::u16string_view property, const MacroValue& value);
// The Text objects of the paragraph's runs, in order.
std::vector<ObjectRef> TextObjectsOf(Session& session, const std::shared_ptr<LoadedPage>& page, ON::OE& paragraph);

// The paragraph object a Text object belongs to.
ObjectRef ParagraphOfText(Session& session, const MacroObject& text);

// The paragraphs below the lists, one line each, joined with "\n".
std::u16string ListText(const xml::ChildList<ON::OEChildren>& lists);
// One paragraph per line: the existing paragraphs (in document order) take the lines in turn,
// paragraphs left over are removed, lines left over become new paragraphs at the end of the last
// list. A holder always keeps at least one paragraph.
void SetListText(xml::ChildList<ON::OEChildren>& lists, std::u16string_view text);

// The start of a text for the log: at most 40 characters, line breaks shown as blanks, "..."
// when it was cut.
std::u16string ShortText(std::u16string_view text);

}  // namespace qm::onenote
