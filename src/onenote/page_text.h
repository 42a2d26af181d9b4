// The text of paragraphs and of paragraph lists (an outline's, a cell's) as the page objects read
// and write it: one line per paragraph, in document order, nested paragraphs included. The
// formatted text itself (runs, Text objects, searching) is fmt_paragraph.h and text_object.h;
// this is where the page objects meet it.
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
// Replaces the paragraph's text by plain text (line breaks kept as line breaks), formatted as its
// first character; true when the page changed. A paragraph that holds a table, an image or any
// other object instead of text refuses.
bool SetParagraphTextOf(ON::OE& paragraph, std::u16string_view text);

// Applies one of the paragraph-wide formatting properties (fontName ... lang) to all the text of
// the paragraph; the value has the property's kind. True when the page changed. A value the
// property cannot take fails with the invalid-value message naming `typeName`.
bool ApplyParagraphFormat(ON::OE& paragraph, std::u16string_view property, const MacroValue& value);
// The Text objects of the paragraph's runs, in order.
std::vector<ObjectRef> TextObjectsOf(const std::shared_ptr<LoadedPage>& page, ON::OE& paragraph);
// The Text objects where `value` occurs in the paragraph's text.
std::vector<ObjectRef> FindTextIn(const std::shared_ptr<LoadedPage>& page, ON::OE& paragraph, std::u16string_view value,
                                  bool ignoreCase);
// What the Text objects of a loaded page report to: writes mark the page modified, and they log
// to the session's log.
std::shared_ptr<class TextHost> MakeTextHost(Session& session, const std::shared_ptr<LoadedPage>& page);

// What a paragraph holds, as the `contentType` property names it: "text", "image", "table" ...
std::u16string_view ContentTypeOfParagraph(const ON::OE& paragraph);

// The text paragraphs below the lists (those holding a table, an image ... are not text and are
// left alone), one line each, joined with "\n".
std::u16string ListText(const xml::ChildList<ON::OEChildren>& lists);
// One paragraph per line: the existing paragraphs (in document order) take the lines in turn,
// paragraphs left over are removed, lines left over become new paragraphs at the end of the last
// list. A holder always keeps at least one paragraph.
bool SetListText(xml::ChildList<ON::OEChildren>& lists, std::u16string_view text);

// The start of a text for the log: at most 40 characters, line breaks shown as blanks, "..."
// when it was cut.
std::u16string ShortText(std::u16string_view text);

}  // namespace qm::onenote
