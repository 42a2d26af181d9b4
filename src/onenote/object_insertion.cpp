// InsertObject: new objects under a parent, at a position among the parent's children.
//
// What the new objects hold (the least OneNote's schema asks for):
// - a Page: made by OneNote (CreateNewPage) at the end of the section, then moved to the
//   position in the run's tree; the move goes to OneNote with the section's changes at the end
//   of the run;
// - an Outline: one empty paragraph;
// - a Paragraph: nothing yet (its text comes with `text` or with Text objects);
// - a Table: one column 72 points wide and one row of one cell with an empty paragraph, held by a
//   new paragraph;
// - a Row: one cell per column of the table (at least one), each with an empty paragraph;
// - a Cell: an empty paragraph; when the row then has more cells than the table has columns, the
//   table gets a column more;
// - a Tag: the page's "To Do" tag definition (added with the next free index when the page has
//   none), not completed, created now; tags and Outlook tasks of the object count toward the
//   limit of 20;
// - a Text: an empty run at the start (position 0) or the end (-1) of the paragraph's text.
// A paragraph's children, for the position, are its tags under Tag and its text elements under
// Text; an outline's and a cell's are the paragraphs of their (first) paragraph list.
#include <algorithm>
#include <stdexcept>

#include "core/error.h"
#include "core/format.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder.h"
#include "onenote/page_objects.h"
#include "onenote/page_text.h"
#include "onenote/session.h"
#include "onenote/text_object.h"
#include "runtime/messages.h"

namespace qm::onenote {
namespace {

constexpr std::size_t kMaxTags = 20;
constexpr double kNewColumnWidth = 72;

// Where the new object goes: before the child at `index`, or at the end.
struct Place {
    std::size_t index = 0;
    bool atEnd = true;
};

Place PlaceAt(std::int32_t position, std::size_t count) {
    if (position >= 0 && static_cast<std::size_t>(position) < count) return {static_cast<std::size_t>(position), false};
    return {count, true};
}

template <class E>
void InsertAt(xml::ChildList<E>& list, std::shared_ptr<E> element, const Place& place) {
    if (place.atEnd || place.index >= list.size()) {
        list.Add(std::move(element));
    } else {
        list.Insert(place.index, std::move(element));
    }
}

std::shared_ptr<ON::OEChildrenChoice> ParagraphItem(std::shared_ptr<ON::OE> paragraph) {
    auto item = std::make_shared<ON::OEChildrenChoice>();
    paragraph->owner = item.get();
    item->oe = std::move(paragraph);
    return item;
}

std::shared_ptr<ON::OEChildren> ListWithEmptyParagraph() {
    auto list = ON::New<ON::OEChildren>();
    list->items.Add(ParagraphItem(ON::New<ON::OE>()));
    return list;
}

std::shared_ptr<ON::Cell> NewCell() {
    auto cell = ON::New<ON::Cell>();
    cell->oeChildren.Add(ListWithEmptyParagraph());
    return cell;
}

std::shared_ptr<ON::Column> NewColumn(std::size_t index) {
    auto column = ON::New<ON::Column>();
    column->index = ON::Int::Of(static_cast<std::int32_t>(index));
    column->width = ON::Float::Of(kNewColumnWidth);
    return column;
}

std::shared_ptr<ON::Table> NewTable() {
    auto table = ON::New<ON::Table>();
    table->columns = ON::New<ON::Columns>();
    table->columns->owner = table.get();
    table->columns->columns.Add(NewColumn(0));
    auto row = ON::New<ON::Row>();
    row->cells.Add(NewCell());
    table->rows.Add(std::move(row));
    return table;
}

// The paragraph list of an outline or a cell that new paragraphs go into: its first.
ON::OEChildren& FirstList(xml::ChildList<ON::OEChildren>& lists) {
    if (lists.empty()) lists.Add(ON::New<ON::OEChildren>());
    return *lists[0];
}

std::size_t TagCount(const xml::ChildList<ON::TagChoice>& holder) {
    return static_cast<std::size_t>(std::count_if(holder.begin(), holder.end(),
                                                  [](const auto& c) { return c->tag || c->outlookTask; }));
}

// The index of the page's "To Do" definition, added when the page has none.
std::int32_t ToDoIndex(ON::Page& page) {
    std::int32_t next = 0;
    for (const auto& def : page.tagDefs) {
        if (def->name && *def->name == msg::kNewTagName && def->index) return def->index->value();
        if (def->index) next = std::max(next, def->index->value() + 1);
    }
    auto def = ON::New<ON::TagDef>();
    def->index = ON::Int::Of(next);
    def->name = std::u16string(msg::kNewTagName);
    def->type = ON::Int::Of(0);
    def->symbol = ON::Int::Of(3);
    def->highlightColor = u"none";
    page.tagDefs.Add(std::move(def));
    return next;
}

// Inserts a new tag among the tags of a holder; the place counts Tag elements only, and a tag at
// the end goes after every tag-like item, where the schema allows it.
std::shared_ptr<ON::Tag> InsertTag(xml::ChildList<ON::TagChoice>& holder, ON::Page& page, const Place& place) {
    auto tag = ON::New<ON::Tag>();
    tag->index = ON::Int::Of(ToDoIndex(page));
    tag->creationDate = ON::DateTime::Of(UtcNow());
    auto choice = std::make_shared<ON::TagChoice>();
    tag->owner = choice.get();
    choice->tag = tag;
    std::size_t at = 0, tags = 0;
    for (std::size_t i = 0; i < holder.size(); ++i) {
        const auto& item = holder[i];
        if (item->tag && !place.atEnd && tags++ == place.index) {
            holder.Insert(i, std::move(choice));
            return tag;
        }
        if (item->tag || item->outlookTask || item->mediaIndex) at = i + 1;
    }
    holder.Insert(at, std::move(choice));
    return tag;
}

}  // namespace

MacroValue Session::InsertObject(const MacroValue& object, const MacroValue& type, const MacroValue& position) {
    constexpr std::u16string_view kFunction = u"InsertObject";
    if (object.kind() != Kind::Object || !object.object()) {
        throw MacroError(FormatMessage(msg::kExpectedObjectFirst, {kFunction}));
    }
    std::u16string typeName;
    std::int32_t at = 0;
    try {
        typeName = type.AsString();
        at = position.AsInteger();
    } catch (const std::invalid_argument&) {
        throw MacroError(FormatMessage(qm::msg::kCannotConvertArgument, {kFunction}));
    }
    const ObjectRef& parent = object.object();
    const std::optional<ObjectType> parentType = TypeFromNumber(parent->TypeNumber());
    auto* content = dynamic_cast<PageContentObject*>(parent.get());
    const std::optional<ObjectType> child = TypeFromName(typeName);
    auto refuse = [&](std::u16string_view message) { throw MacroError(std::u16string(message)); };
    auto log = [&](const Place& place) {
        if (!log_) return;
        std::u16string line(msg::kLogInserting);
        line += typeName;
        line += msg::kLogAt;
        if (place.atEnd) {
            line += msg::kLogAtTheEnd;
        } else {
            line += msg::kLogAtIndex;
            line += IntegerText(static_cast<std::int64_t>(place.index));
            line += msg::kLogAtIndexEnd;
        }
        LogLine(log_, line);
    };

    switch (parentType.value_or(ObjectType::Text)) {
        case ObjectType::Section: {
            if (child != ObjectType::Page) refuse(msg::kOnlyPageUnderSection);
            auto& section = static_cast<HierarchyObject&>(*parent);
            Fetch(section, Level::Pages);
            auto& pages = static_cast<ON::Section&>(*section.node()).pages;
            const Place place = PlaceAt(at, pages.size());
            log(place);
            const std::u16string id = api_->CreateNewPage(section.id());
            Refresh(section, Level::Pages);
            std::shared_ptr<HierarchyObject> page = ObjectById(ObjectType::Page, id);
            if (!page) return MacroValue();
            if (!place.atEnd && pages.size() > place.index + 1 && pages[pages.size() - 1].get() == page->node()) {
                std::shared_ptr<ON::Page> moved = pages.Remove(pages.size() - 1);
                pages.Insert(place.index, std::move(moved));
                section.MarkChildrenMoved();
            }
            return MacroValue(ObjectRef(page));
        }
        case ObjectType::Page: {
            if (child != ObjectType::Outline) refuse(msg::kOnlyOutlineUnderPage);
            auto& pageObject = static_cast<PageObject&>(*parent);
            const std::shared_ptr<LoadedPage> loaded = LoadContent(pageObject);
            auto& elements = loaded->document->elements;
            const Place place = PlaceAt(at, elements.size());
            log(place);
            auto outline = ON::New<ON::Outline>();
            outline->oeChildren.Add(ListWithEmptyParagraph());
            auto choice = std::make_shared<ON::PageElementChoice>();
            outline->owner = choice.get();
            choice->outline = outline;
            InsertAt(elements, std::move(choice), place);
            PageModified(*loaded);
            return MacroValue(MakeContentObject(*this, loaded, *outline));
        }
        case ObjectType::Outline:
        case ObjectType::Cell: {
            if (child != ObjectType::Paragraph && child != ObjectType::Table) refuse(msg::kOnlyParagraphOrTable);
            auto& lists = parentType == ObjectType::Outline ? ElementOf<ON::Outline>(*content).oeChildren
                                                            : ElementOf<ON::Cell>(*content).oeChildren;
            ON::OEChildren& list = FirstList(lists);
            const Place place = PlaceAt(at, list.items.size());
            log(place);
            auto paragraph = ON::New<ON::OE>();
            std::shared_ptr<xml::ChildElement> made = paragraph;
            if (child == ObjectType::Table) {
                auto table = NewTable();
                auto holder = std::make_shared<ON::OEChoice>();
                table->owner = holder.get();
                holder->table = table;
                paragraph->content.Add(std::move(holder));
                made = table;
            }
            InsertAt(list.items, ParagraphItem(std::move(paragraph)), place);
            PageModified(*content->page());
            return MacroValue(MakeContentObject(*this, content->page(), *made));
        }
        case ObjectType::Paragraph: {
            if (child != ObjectType::Text && child != ObjectType::Tag) refuse(msg::kOnlyTextOrTag);
            auto& paragraph = ElementOf<ON::OE>(*content);
            if (child == ObjectType::Tag) {
                const Place place = PlaceAt(at, TagsOf(paragraph.tags).size());
                log(place);
                if (TagCount(paragraph.tags) >= kMaxTags) refuse(msg::kTooManyTags);
                auto tag = InsertTag(paragraph.tags, *content->page()->document, place);
                PageModified(*content->page());
                return MacroValue(MakeContentObject(*this, content->page(), *tag));
            }
            std::vector<ON::T*> texts = TextElementsOf(paragraph);
            const Place place = PlaceAt(at, texts.size());
            log(place);
            if (at != 0 && at != -1) refuse(msg::kTextPosition);
            const std::u16string_view holds = ContentTypeOfParagraph(paragraph);
            if (holds != u"text" && holds != u"unknown" && holds != u"ink writing") {
                throw MacroError(FormatMessage(msg::kTextIntoNonText, {holds}));
            }
            if (texts.empty()) {
                SetParagraphTextOf(paragraph, u"");
                texts = TextElementsOf(paragraph);
                PageModified(*content->page());
            }
            ON::T& element = at == 0 ? *texts.front() : *texts.back();
            const std::size_t offset = at == 0 ? 0 : TextOf(element).size();
            return MacroValue(ObjectRef(std::make_shared<TextObject>(
                std::static_pointer_cast<ON::OE>(content->element()), element.shared_from_this(), offset, offset,
                content->page()->textHost)));
        }
        case ObjectType::Table: {
            if (child != ObjectType::Row) refuse(msg::kOnlyRow);
            auto& table = ElementOf<ON::Table>(*content);
            const Place place = PlaceAt(at, table.rows.size());
            log(place);
            const std::size_t columns = table.columns ? table.columns->columns.size() : 0;
            auto row = ON::New<ON::Row>();
            for (std::size_t i = 0; i < std::max<std::size_t>(columns, 1); ++i) row->cells.Add(NewCell());
            std::shared_ptr<ON::Row> made = row;
            InsertAt(table.rows, std::move(row), place);
            PageModified(*content->page());
            return MacroValue(MakeContentObject(*this, content->page(), *made));
        }
        case ObjectType::Row: {
            if (child != ObjectType::Cell) refuse(msg::kOnlyCell);
            auto& row = ElementOf<ON::Row>(*content);
            const Place place = PlaceAt(at, row.cells.size());
            log(place);
            std::shared_ptr<ON::Cell> cell = NewCell();
            InsertAt(row.cells, cell, place);
            if (auto* table = ON::AncestorOf<ON::Table>(row); table && table->columns) {
                auto& columns = table->columns->columns;
                while (columns.size() < row.cells.size()) columns.Add(NewColumn(columns.size()));
            }
            PageModified(*content->page());
            return MacroValue(MakeContentObject(*this, content->page(), *cell));
        }
        case ObjectType::Image:
        case ObjectType::EmbeddedFile: {
            const bool image = parentType == ObjectType::Image;
            if (child != ObjectType::Tag) refuse(image ? msg::kOnlyTagUnderImage : msg::kOnlyTagUnderFile);
            auto& tags = image ? ElementOf<ON::Image>(*content).tags : ElementOf<ON::InsertedFile>(*content).tags;
            const Place place = PlaceAt(at, TagsOf(tags).size());
            log(place);
            if (ON::AncestorOf<ON::Outline>(*content->node())) {
                refuse(image ? msg::kImageTagInsideOutline : msg::kFileTagInsideOutline);
            }
            if (TagCount(tags) >= kMaxTags) refuse(msg::kTooManyTags);
            auto tag = InsertTag(tags, *content->page()->document, place);
            PageModified(*content->page());
            return MacroValue(MakeContentObject(*this, content->page(), *tag));
        }
        default: break;
    }
    throw MacroError(FormatMessage(msg::kCannotInsertUnder, {parent->TypeName()}));
}

}  // namespace qm::onenote
