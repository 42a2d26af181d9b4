#include "onenote/page_text.h"

#include <algorithm>
#include <vector>

#include "onenote/page_objects.h"
#include "onenote/plain_text.h"

namespace qm::onenote {
namespace {

constexpr std::size_t kShortTextLength = 40;

std::u16string Markup(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (char16_t c : text) {
        switch (c) {
            case u'&': out += u"&amp;"; break;
            case u'<': out += u"&lt;"; break;
            case u'>': out += u"&gt;"; break;
            case u'\n': out += u"<br>"; break;
            case u'\r': break;
            default: out += c;
        }
    }
    return out;
}

// Every paragraph below the lists in document order (a paragraph before the paragraphs nested in
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
        out.push_back(std::move(paragraph));
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

}  // namespace

std::u16string ParagraphTextOf(const ON::OE& paragraph) {
    std::u16string text;
    for (const auto& choice : paragraph.content) {
        if (choice->t) text += PlainText(choice->t->text);
    }
    return text;
}

void SetParagraphTextOf(ON::OE& paragraph, std::u16string_view text) {
    ON::T* first = nullptr;
    for (std::size_t i = 0; i < paragraph.content.size();) {
        const auto& choice = paragraph.content[i];
        if (choice->t && first == nullptr) {
            first = choice->t.get();
        } else if (choice->t) {
            paragraph.content.Remove(i);
            continue;
        }
        ++i;
    }
    if (first == nullptr) {
        auto choice = std::make_shared<ON::OEChoice>();
        choice->t = ON::New<ON::T>();
        choice->t->owner = choice.get();
        first = choice->t.get();
        paragraph.content.Add(std::move(choice));
    }
    first->text = Markup(text);
}

void ApplyParagraphFormat(ON::OE&, std::u16string_view, const MacroValue&) {}

std::vector<ObjectRef> TextObjectsOf(Session&, const std::shared_ptr<LoadedPage>&, ON::OE&) { return {}; }

ObjectRef ParagraphOfText(Session&, const MacroObject&) { return nullptr; }

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

void SetListText(xml::ChildList<ON::OEChildren>& lists, std::u16string_view text) {
    std::vector<std::u16string_view> lines;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(u'\n', start);
        lines.push_back(text.substr(start, end == std::u16string_view::npos ? std::u16string_view::npos : end - start));
        if (end == std::u16string_view::npos) break;
        start = end + 1;
    }
    std::vector<std::shared_ptr<ON::OE>> paragraphs = AllParagraphs(lists);
    // Leftover paragraphs go from the last one back, so that a removed paragraph takes only
    // paragraphs that were to go anyway with it.
    while (paragraphs.size() > lines.size()) {
        RemoveParagraph(*paragraphs.back());
        paragraphs.pop_back();
    }
    for (std::size_t i = 0; i < paragraphs.size(); ++i) SetParagraphTextOf(*paragraphs[i], lines[i]);
    if (paragraphs.size() == lines.size()) return;
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
}

std::u16string ShortText(std::u16string_view text) {
    std::u16string out;
    for (char16_t c : text.substr(0, kShortTextLength)) out += (c == u'\n' || c == u'\r' || c == u'\t') ? u' ' : c;
    if (text.size() > kShortTextLength) out += u"...";
    return out;
}

}  // namespace qm::onenote
