#include "onenote/notebook_listing.h"

#include <algorithm>

#include "core/format.h"
#include "core/text.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder_detail.h"
#include "onenote/plain_text.h"

namespace qm::onenote {

namespace {

using detail::Kind;

class Listing {
public:
    // Text with line breaks continues on lines of the same indentation.
    void Line(int depth, std::u16string_view text) {
        for (;;) {
            const std::size_t end = text.find(u'\n');
            out_.append(static_cast<std::size_t>(depth) * 2, u' ');
            out_ += text.substr(0, end);
            out_ += u'\n';
            if (end == std::u16string_view::npos) return;
            text.remove_prefix(end + 1);
        }
    }
    std::u16string Take() { return std::move(out_); }

private:
    std::u16string out_;
};

std::u16string NameOf(const ON::String& name) {
    return name && !name->empty() ? *name : std::u16string(msg::kListUntitled);
}

std::u16string Marks(const xml::ChildElement& node) {
    std::u16string marks;
    const auto* h = dynamic_cast<const ON::HierarchyObjectAttributes*>(&node);
    if (h != nullptr && *h->isCurrentlyViewed) marks += msg::kListCurrent;
    if (const auto* section = dynamic_cast<const ON::Section*>(&node)) {
        if (*section->readOnly) marks += msg::kListReadOnly;
        if (*section->locked) marks += msg::kListLocked;
    }
    if (const auto* page = dynamic_cast<const ON::Page*>(&node); page != nullptr && *page->isUnread) {
        marks += msg::kListUnread;
    }
    return marks;
}

void ListNode(const xml::ChildElement& node, int depth, Listing& out) {
    const Kind kind = detail::KindOf(node);
    const auto* h = dynamic_cast<const ON::HierarchyObjectAttributes*>(&node);
    int childDepth = depth + 1;
    switch (kind) {
        case Kind::Notebooks: childDepth = depth; break;
        case Kind::UnfiledNotes: out.Line(depth, msg::kListUnfiledNotes); break;
        case Kind::OpenSections: out.Line(depth, msg::kListOpenSections); break;
        case Kind::Notebook:
        case Kind::SectionGroup:
        case Kind::Section:
        case Kind::Page: {
            const std::u16string_view templ = kind == Kind::Notebook       ? msg::kListNotebook
                                              : kind == Kind::SectionGroup ? msg::kListSectionGroup
                                              : kind == Kind::Section      ? msg::kListSection
                                                                           : msg::kListPage;
            int lineDepth = depth;
            if (const auto* page = dynamic_cast<const ON::Page*>(&node); page != nullptr && page->pageLevel) {
                lineDepth += std::clamp(page->pageLevel->value(), 1, 3) - 1;  // subpages under their page
            }
            out.Line(lineDepth, FormatMessage(templ, {NameOf(h->name), h->ID.value_or(u"")}) + Marks(node));
            break;
        }
        case Kind::Other: return;
    }
    detail::ForEachChild(node, [&](xml::ChildElement& child, Kind) { ListNode(child, childDepth, out); });
}

class PageLister {
public:
    explicit PageLister(const ON::Page& page) : page_(page) {}

    std::u16string List() {
        out_.Line(0, FormatMessage(msg::kListPage, {NameOf(page_.name), page_.ID.value_or(u"")}) + Marks(page_));
        if (page_.title && page_.title->oe) out_.Line(1, FormatMessage(msg::kListTitle, {ParagraphText(*page_.title->oe)}));
        for (const auto& element : page_.elements) {
            if (element->outline) {
                out_.Line(1, msg::kListOutline);
                for (const auto& children : element->outline->oeChildren) Children(*children, 2);
            } else if (element->image) {
                out_.Line(1, FormatMessage(msg::kListImage, {element->image->alt.value_or(u"")}));
            } else if (element->insertedFile) {
                out_.Line(1, FormatMessage(msg::kListEmbeddedFile, {element->insertedFile->preferredName.value_or(u"")}));
            } else if (element->mediaFile) {
                out_.Line(1, FormatMessage(msg::kListMediaFile, {element->mediaFile->preferredName.value_or(u"")}));
            } else if (element->inkDrawing) {
                out_.Line(1, msg::kListInk);
            } else if (element->futureObject) {
                out_.Line(1, FormatMessage(msg::kListKept, {ON::FutureObject::kName}));
            }
        }
        for (const auto& kept : page_.unknown.children()) {
            if (kept.node.kind == xml::RawNode::Kind::Element) out_.Line(1, FormatMessage(msg::kListKept, {kept.node.localName}));
        }
        return out_.Take();
    }

private:
    void Children(const ON::OEChildren& children, int depth) {
        for (const auto& item : children.items) {
            if (item->oe) Paragraph(*item->oe, depth);
            if (item->htmlBlock) out_.Line(depth, msg::kListHtmlBlock);
        }
    }

    std::u16string Prefix(const ON::OE& oe) const {
        std::u16string prefix;
        for (const auto& holder : oe.tags) {
            if (!holder->tag) continue;
            const int index = holder->tag->index ? holder->tag->index->value() : -1;
            std::u16string name;
            for (const auto& def : page_.tagDefs) {
                if (def->index && def->index->value() == index) name = def->name.value_or(u"");
            }
            prefix += FormatMessage(*holder->tag->completed ? msg::kListTagDone : msg::kListTag, {name});
        }
        if (oe.list && oe.list->number) prefix += oe.list->number->text.value_or(u"#") + u" ";
        if (oe.list && oe.list->bullet) prefix += msg::kListBullet;
        return prefix;
    }

    void Paragraph(const ON::OE& oe, int depth) {
        std::u16string text;
        for (const auto& content : oe.content) {
            if (content->t) text += PlainText(content->t->text);
            if (content->inkWord) text += FormatMessage(msg::kListInkWord, {content->inkWord->recognizedText.value_or(u"")});
        }
        const std::u16string prefix = Prefix(oe);
        if (!text.empty() || !prefix.empty()) out_.Line(depth, prefix + text);
        for (const auto& content : oe.content) {
            if (content->table) Table(*content->table, depth);
            if (content->image) out_.Line(depth, FormatMessage(msg::kListImage, {content->image->alt.value_or(u"")}));
            if (content->insertedFile) {
                out_.Line(depth, FormatMessage(msg::kListEmbeddedFile, {content->insertedFile->preferredName.value_or(u"")}));
            }
            if (content->mediaFile) {
                out_.Line(depth, FormatMessage(msg::kListMediaFile, {content->mediaFile->preferredName.value_or(u"")}));
            }
            if (content->inkDrawing || content->inkParagraph) out_.Line(depth, msg::kListInk);
            if (content->futureObject) out_.Line(depth, FormatMessage(msg::kListKept, {ON::FutureObject::kName}));
        }
        for (const auto& kept : oe.unknown.children()) {
            if (kept.node.kind == xml::RawNode::Kind::Element) out_.Line(depth, FormatMessage(msg::kListKept, {kept.node.localName}));
        }
        for (const auto& children : oe.oeChildren) Children(*children, depth + 1);
    }

    void Table(const ON::Table& table, int depth) {
        const std::size_t columns = table.columns ? table.columns->columns.size() : 0;
        out_.Line(depth, FormatMessage(msg::kListTable, {Ascii(std::to_string(columns)), Ascii(std::to_string(table.rows.size()))}));
        for (const auto& row : table.rows) {
            std::u16string cells;
            for (const auto& cell : row->cells) {
                if (!cells.empty()) cells += msg::kListCellSeparator;
                std::u16string text;
                for (const auto& children : cell->oeChildren) {
                    for (const auto& item : children->items) {
                        if (!item->oe) continue;
                        if (!text.empty()) text += u' ';
                        text += ParagraphText(*item->oe);
                    }
                }
                cells += text;
            }
            out_.Line(depth + 1, FormatMessage(msg::kListRow, {cells}));
        }
    }

    const ON::Page& page_;
    Listing out_;
};

}  // namespace

std::u16string ListHierarchy(const xml::ChildElement& node) {
    Listing out;
    ListNode(node, 0, out);
    return out.Take();
}

std::u16string ListPage(const ON::Page& page) { return PageLister(page).List(); }

}  // namespace qm::onenote
