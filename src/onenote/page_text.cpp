#include "onenote/page_text.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "core/error.h"
#include "core/format.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/session.h"
#include "onenote/text_object.h"

namespace qm::onenote {
namespace {

constexpr std::size_t kShortTextLength = 40;

// A paragraph of text: one that holds nothing but text runs and ink words (or nothing yet).
bool HoldsText(const ON::OE& paragraph) {
    for (const auto& choice : paragraph.content) {
        if (!choice->t && !choice->inkWord) return false;
    }
    return true;
}

// Every text paragraph below the lists in document order (a paragraph before the paragraphs nested in
// it), without recursion: nesting is as deep as the page.
std::vector<std::shared_ptr<ON::OE>> AllParagraphs(const xml::ChildList<ON::OEChildren>& lists) {
    std::vector<std::shared_ptr<ON::OE>> out;
    std::vector<std::shared_ptr<ON::OE>> pending = ParagraphsOf(lists);
    std::reverse(pending.begin(), pending.end());
    while (!pending.empty()) {
        std::shared_ptr<ON::OE> paragraph = std::move(pending.back());
        pending.pop_back();
        std::vector<std::shared_ptr<ON::OE>> nested = ParagraphsOf(paragraph->oeChildren);
        pending.insert(pending.end(), nested.rbegin(), nested.rend());
        if (HoldsText(*paragraph)) out.push_back(std::move(paragraph));
    }
    return out;
}

// Takes a paragraph out of its list; a list left empty goes too, since a list holds at least one
// item.
void RemoveParagraph(ON::OE& paragraph) {
    auto* choice = dynamic_cast<ON::OEChildrenChoice*>(paragraph.owner);
    auto* items = choice ? dynamic_cast<xml::ChildList<ON::OEChildrenChoice>*>(choice->owner) : nullptr;
    if (!items) return;
    for (std::size_t i = 0; i < items->size(); ++i) {
        if ((*items)[i].get() == choice) {
            items->Remove(i);
            break;
        }
    }
    paragraph.owner = nullptr;
    if (!items->empty()) return;
    auto* list = dynamic_cast<ON::OEChildren*>(items->owner);
    auto* lists = list ? dynamic_cast<xml::ChildList<ON::OEChildren>*>(list->owner) : nullptr;
    if (!lists) return;
    for (std::size_t i = 0; i < lists->size(); ++i) {
        if ((*lists)[i].get() == list) {
            lists->Remove(i);
            break;
        }
    }
}

class PageTextHost final : public TextHost {
public:
    PageTextHost(Session& session, const std::shared_ptr<LoadedPage>& page) : session_(&session), page_(page) {}
    void MarkModified() override {
        if (auto page = page_.lock()) session_->PageModified(*page);
    }
    LogSink* log() override { return session_->log(); }

private:
    Session* session_;
    std::weak_ptr<LoadedPage> page_;
};

}  // namespace

std::shared_ptr<TextHost> MakeTextHost(Session& session, const std::shared_ptr<LoadedPage>& page) {
    return std::make_shared<PageTextHost>(session, page);
}

std::u16string ParagraphTextOf(const ON::OE& paragraph) { return TextOfParagraph(paragraph); }

bool SetParagraphTextOf(ON::OE& paragraph, std::u16string_view text) {
    if (!HoldsText(paragraph)) {
        throw MacroError(FormatMessage(msg::kParagraphHoldsNoText, {ContentTypeOfParagraph(paragraph)}));
    }
    return SetTextOfParagraph(paragraph, text);
}

bool ApplyParagraphFormat(ON::OE& paragraph, std::u16string_view property, const MacroValue& value) {
    const std::optional<TextProperty> which = TextPropertyNamed(property);
    if (!which) return false;
    MacroValue converted;
    try {
        converted = ConvertTextValue(*which, value);
    } catch (const std::invalid_argument&) {
        throw MacroError(FormatMessage(msg::kInvalidPropertyValue, {property, u"Paragraph", value.DescribeShort(),
                                                                    KindOf(*which) == TextValueKind::Number ? msg::kKindNumber
                                                                    : KindOf(*which) == TextValueKind::Bool ? msg::kKindBool
                                                                                                            : msg::kKindString}));
    }
    return FormatParagraph(paragraph, *which, converted);
}

std::vector<ObjectRef> TextObjectsOf(const std::shared_ptr<LoadedPage>& page, ON::OE& paragraph) {
    return TextObjectsOfParagraph(paragraph.shared_from_this(), page->textHost);
}

std::vector<ObjectRef> FindTextIn(const std::shared_ptr<LoadedPage>& page, ON::OE& paragraph, std::u16string_view value,
                                  bool ignoreCase) {
    return FindTextInParagraph(paragraph.shared_from_this(), value, ignoreCase, page->textHost);
}

std::u16string_view ContentTypeOfParagraph(const ON::OE& paragraph) {
    bool t = false, image = false, table = false, ink = false, inkWord = false, file = false, media = false;
    for (const auto& choice : paragraph.content) {
        t |= choice->t != nullptr;
        image |= choice->image != nullptr;
        table |= choice->table != nullptr;
        ink |= choice->inkDrawing != nullptr;
        inkWord |= choice->inkWord != nullptr;
        file |= choice->insertedFile != nullptr;
        media |= choice->mediaFile != nullptr;
    }
    return t         ? u"text"
           : image   ? u"image"
           : table   ? u"table"
           : ink     ? u"ink drawing"
           : inkWord ? u"ink writing"
           : file    ? u"embedded file"
           : media   ? u"embedded media"
                     : u"unknown";
}

std::u16string ListText(const xml::ChildList<ON::OEChildren>& lists) {
    std::u16string text;
    bool firstLine = true;
    for (const auto& paragraph : AllParagraphs(lists)) {
        if (!firstLine) text += u'\n';
        firstLine = false;
        text += ParagraphTextOf(*paragraph);
    }
    return text;
}

bool SetListText(xml::ChildList<ON::OEChildren>& lists, std::u16string_view text) {
    if (ListText(lists) == text) return false;
    std::vector<std::u16string_view> lines;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(u'\n', start);
        lines.push_back(text.substr(start, end == std::u16string_view::npos ? std::u16string_view::npos : end - start));
        if (end == std::u16string_view::npos) break;
        start = end + 1;
    }
    std::vector<std::shared_ptr<ON::OE>> paragraphs = AllParagraphs(lists);
    // Leftover paragraphs go from the last one back, so that a removed paragraph takes only
    // paragraphs that were to go anyway with it; one that holds other paragraphs (a table, an
    // image) is emptied instead.
    while (paragraphs.size() > lines.size()) {
        ON::OE& leftover = *paragraphs.back();
        if (ParagraphsOf(leftover.oeChildren).empty()) {
            RemoveParagraph(leftover);
        } else {
            SetParagraphTextOf(leftover, u"");
        }
        paragraphs.pop_back();
    }
    for (std::size_t i = 0; i < paragraphs.size(); ++i) SetParagraphTextOf(*paragraphs[i], lines[i]);
    if (paragraphs.size() == lines.size()) return true;
    if (lists.empty()) {
        auto list = ON::New<ON::OEChildren>();
        lists.Add(list);
    }
    ON::OEChildren& last = *lists[lists.size() - 1];
    for (std::size_t i = paragraphs.size(); i < lines.size(); ++i) {
        auto item = std::make_shared<ON::OEChildrenChoice>();
        item->oe = ON::New<ON::OE>();
        item->oe->owner = item.get();
        SetParagraphTextOf(*item->oe, lines[i]);
        last.items.Add(std::move(item));
    }
    return true;
}

std::u16string ShortText(std::u16string_view text) {
    std::u16string out;
    for (char16_t c : text.substr(0, kShortTextLength)) out += (c == u'\n' || c == u'\r' || c == u'\t') ? u' ' : c;
    if (text.size() > kShortTextLength) out += u"...";
    return out;
}

}  // namespace qm::onenote
