// QueryText.
#include <stdexcept>

#include "core/error.h"
#include "core/format.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/page_text.h"
#include "onenote/session.h"
#include "onenote/text_object.h"
#include "runtime/messages.h"

namespace qm::onenote {

// The pieces of text under the scope that match the value, in document order: the paragraphs a
// query for paragraphs finds (the scope's pages loaded first), searched one by one. Under a Text
// object only the matches inside its stretch count.
MacroValue Session::QueryText(const MacroValue& scope, const MacroValue& value, const MacroValue& ignoreCase) {
    constexpr std::u16string_view kFunction = u"QueryText";
    if (scope.kind() != Kind::Object || !scope.object()) {
        throw MacroError(FormatMessage(msg::kExpectedObjectSecond, {kFunction}));
    }
    std::u16string searched;
    bool noCase = false;
    try {
        searched = value.AsString();
        noCase = ignoreCase.AsBoolean();
    } catch (const std::invalid_argument&) {
        throw MacroError(FormatMessage(qm::msg::kCannotConvertArgument, {kFunction}));
    }

    const ObjectRef& object = scope.object();
    const auto* text = dynamic_cast<const TextObject*>(object.get());
    std::vector<ObjectRef> paragraphs;
    if (text) {
        if (text->paragraph()) {
            if (auto page = PageHolding(*text->paragraph())) paragraphs.push_back(MakeContentObject(*this, page, *text->paragraph()));
        }
    } else {
        paragraphs = Collect(object, ObjectType::Paragraph, kFunction);
    }

    std::vector<ObjectRef> pieces;
    for (const ObjectRef& paragraph : paragraphs) {
        if (!paragraph) continue;
        auto& content = static_cast<PageContentObject&>(*paragraph);
        for (ObjectRef& piece : FindTextIn(content.page(), static_cast<ON::OE&>(*content.node()), searched, noCase)) {
            const auto& match = static_cast<const TextObject&>(*piece);
            if (text && (match.element() != text->element() || match.start() < text->start() || match.end() > text->end())) {
                continue;
            }
            pieces.push_back(std::move(piece));
        }
    }
    if (log_) LogLine(log_, FoundTextLogLine(pieces.size(), searched));
    return ObjectArray(pieces);
}

}  // namespace qm::onenote
