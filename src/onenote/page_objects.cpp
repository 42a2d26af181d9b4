#include "onenote/page_objects.h"

#include <algorithm>

#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/page_text.h"
#include "onenote/session.h"

namespace qm::onenote {
namespace {

using K = PropertyKind;
constexpr Access RW = Access::ReadWrite;
constexpr Access RO = Access::ReadOnly;

PageContentObject& Self(OneNoteObject& object) { return static_cast<PageContentObject&>(object); }

template <class E>
std::shared_ptr<xml::ChildElement> Shared(xml::ChildElement& element) {
    if (auto* typed = dynamic_cast<E*>(&element)) return typed->shared_from_this();
    return nullptr;
}

// The position of an element among the elements of its list.
template <class E>
std::int32_t IndexIn(const xml::ChildList<E>& list, const E& element) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i].get() == &element) return static_cast<std::int32_t>(i);
    }
    return 0;
}

// --- shared groups ----------------------------------------------------------------------------

template <class E>
constexpr PropertyDef kAuthorGroup[] = {
    Attribute<E, &E::author>(u"author", RW),
    Attribute<E, &E::authorInitials>(u"authorInitials", RW),
    Attribute<E, &E::lastModifiedBy>(u"lastModifiedBy", RW),
    Attribute<E, &E::lastModifiedByInitials>(u"lastModifiedByInitials", RW),
    Attribute<E, &E::creationTime>(u"creationTime", RW),
};

template <class E>
bool HasPosition(const OneNoteObject& o) {
    return ElementOf<E>(o).position != nullptr;
}
template <class E>
bool HasSize(const OneNoteObject& o) {
    return ElementOf<E>(o).size != nullptr;
}
template <class E, class Part, class T, T Part::*Member>
MacroValue GetPart(OneNoteObject& o) {
    const E& element = ElementOf<E>(o);
    if constexpr (std::is_same_v<Part, ON::Position>) {
        return ToValue(element.position.get()->*Member);
    } else {
        return ToValue(element.size.get()->*Member);
    }
}
template <class E, class Part, class T, T Part::*Member>
void SetPart(OneNoteObject& o, const MacroValue& v) {
    E& element = ElementOf<E>(o);
    if constexpr (std::is_same_v<Part, ON::Position>) {
        FromValue(v, element.position.get()->*Member);
    } else {
        FromValue(v, element.size.get()->*Member);
    }
}

template <class E>
constexpr PropertyDef kPageObjectGroup[] = {
    Attribute<E, &E::objectID>(u"objectId", RW),
    Attribute<E, &E::selected>(u"selection", RW),
    Attribute<E, &E::lastModifiedTime>(u"lastModifiedTime", RW),
    {u"x", K::Number, RW, &GetPart<E, ON::Position, ON::OptFloat, &ON::Position::x>,
     &SetPart<E, ON::Position, ON::OptFloat, &ON::Position::x>, &HasPosition<E>},
    {u"y", K::Number, RW, &GetPart<E, ON::Position, ON::OptFloat, &ON::Position::y>,
     &SetPart<E, ON::Position, ON::OptFloat, &ON::Position::y>, &HasPosition<E>},
    {u"z", K::Integer, RW, &GetPart<E, ON::Position, ON::OptInt, &ON::Position::z>,
     &SetPart<E, ON::Position, ON::OptInt, &ON::Position::z>, &HasPosition<E>},
    {u"width", K::Number, RW, &GetPart<E, ON::Size, ON::OptFloat, &ON::Size::width>,
     &SetPart<E, ON::Size, ON::OptFloat, &ON::Size::width>, &HasSize<E>},
    {u"height", K::Number, RW, &GetPart<E, ON::Size, ON::OptFloat, &ON::Size::height>,
     &SetPart<E, ON::Size, ON::OptFloat, &ON::Size::height>, &HasSize<E>},
    {u"sizeSetByUser", K::Bool, RW, &GetPart<E, ON::Size, ON::Bool, &ON::Size::isSetByUser>,
     &SetPart<E, ON::Size, ON::Bool, &ON::Size::isSetByUser>, &HasSize<E>},
};

// The tag group: the first tag of the object and the page's definition of it.
template <class E>
ON::Tag* FirstTag(OneNoteObject& o) {
    for (const auto& choice : ElementOf<E>(o).tags) {
        if (choice->tag) return choice->tag.get();
    }
    return nullptr;
}

const ON::TagDef* DefinitionOf(const PageContentObject& object, const ON::Tag& tag) {
    const ON::Page* page = object.page()->document.get();
    if (!page || !tag.index) return nullptr;
    for (const auto& def : page->tagDefs) {
        if (def->index && def->index->value() == tag.index->value()) return def.get();
    }
    return nullptr;
}

template <class E>
MacroValue GetTags(OneNoteObject& o) {
    return ObjectArray(ObjectsFor(o.session(), Self(o).page(), TagsOf(ElementOf<E>(o).tags)));
}
template <class E, class T, T ON::TagDef::*Member>
MacroValue GetTagDef(OneNoteObject& o) {
    const ON::Tag* tag = FirstTag<E>(o);
    const ON::TagDef* def = tag ? DefinitionOf(Self(o), *tag) : nullptr;
    return def ? ToValue(def->*Member) : MacroValue();
}
template <class E, class T, T ON::TagStateAttributes::*Member>
MacroValue GetTagState(OneNoteObject& o) {
    const ON::Tag* tag = FirstTag<E>(o);
    return tag ? ToValue(tag->*Member) : MacroValue();
}
// Writes a state attribute of the first tag; an object without tags refuses, naming the property.
template <class E, class T, T ON::TagStateAttributes::*Member, const char16_t* Name>
void SetNamedTagState(OneNoteObject& o, const MacroValue& v) {
    ON::Tag* tag = FirstTag<E>(o);
    if (!tag) throw MacroError(FormatMessage(msg::kNoTagToModify, {Name, o.TypeName()}));
    FromValue(v, tag->*Member);
}

inline constexpr char16_t kTagCompleted[] = u"tagCompleted";
inline constexpr char16_t kTagDisabled[] = u"tagDisabled";
inline constexpr char16_t kTagCreationDate[] = u"tagCreationDate";
inline constexpr char16_t kTagCompletionDate[] = u"tagCompletionDate";

template <class E>
constexpr PropertyDef kTagGroupOf[] = {
    {u"tags", K::Array, RO, &GetTags<E>},
    {u"tagName", K::String, RO, &GetTagDef<E, ON::String, &ON::TagDef::name>},
    {u"tagType", K::Integer, RO, &GetTagDef<E, ON::OptInt, &ON::TagDef::type>},
    {u"tagSymbol", K::Integer, RO, &GetTagDef<E, ON::OptInt, &ON::TagDef::symbol>},
    {u"tagFontColor", K::String, RO, &GetTagDef<E, ON::String, &ON::TagDef::fontColor>},
    {u"tagHighlightColor", K::String, RO, &GetTagDef<E, ON::String, &ON::TagDef::highlightColor>},
    {u"tagCompleted", K::Bool, RW, &GetTagState<E, ON::Bool, &ON::TagStateAttributes::completed>,
     &SetNamedTagState<E, ON::Bool, &ON::TagStateAttributes::completed, kTagCompleted>},
    {u"tagDisabled", K::Bool, RW, &GetTagState<E, ON::Bool, &ON::TagStateAttributes::disabled>,
     &SetNamedTagState<E, ON::Bool, &ON::TagStateAttributes::disabled, kTagDisabled>},
    {u"tagCreationDate", K::DateTime, RW, &GetTagState<E, ON::OptDateTime, &ON::TagStateAttributes::creationDate>,
     &SetNamedTagState<E, ON::OptDateTime, &ON::TagStateAttributes::creationDate, kTagCreationDate>},
    {u"tagCompletionDate", K::DateTime, RW,
     &GetTagState<E, ON::OptDateTime, &ON::TagStateAttributes::completionDate>,
     &SetNamedTagState<E, ON::OptDateTime, &ON::TagStateAttributes::completionDate, kTagCompletionDate>},
};

// --- Title ------------------------------------------------------------------------------------

constexpr PropertyDef kTitleOwn[] = {
    kTypeProperty,
    Attribute<ON::Title, &ON::Title::selected>(u"selection", RW),
    Attribute<ON::Title, &ON::Title::showDate>(u"showDate", RW),
    Attribute<ON::Title, &ON::Title::showTime>(u"showTime", RW),
};
constexpr PropertyTable kTitleTables[] = {kTitleOwn};

// --- Outline and Cell: paragraph lists --------------------------------------------------------

template <class E>
MacroValue GetParagraphs(OneNoteObject& o) {
    return ObjectArray(ObjectsFor(o.session(), Self(o).page(), ParagraphsOf(ElementOf<E>(o).oeChildren)));
}
template <class E>
MacroValue GetTextOfList(OneNoteObject& o) {
    return MacroValue(ListText(ElementOf<E>(o).oeChildren));
}
template <class E>
void SetTextOfList(OneNoteObject& o, const MacroValue& v) {
    SetListText(ElementOf<E>(o).oeChildren, v.string());
}
template <class E>
MacroValue GetNumberOfList(OneNoteObject& o) {
    return MacroValue(ExtractDecimal(ListText(ElementOf<E>(o).oeChildren)));
}
template <class E>
void SetNumberOfList(OneNoteObject& o, const MacroValue& v) {
    SetListText(ElementOf<E>(o).oeChildren, DecimalText(v.decimal()));
}

constexpr PropertyDef kOutlineOwn[] = {
    kTypeProperty,
    {u"text", K::String, RW, &GetTextOfList<ON::Outline>, &SetTextOfList<ON::Outline>},
    {u"paragraphs", K::Array, RO, &GetParagraphs<ON::Outline>},
};
constexpr PropertyTable kOutlineTables[] = {kOutlineOwn, kPageObjectGroup<ON::Outline>, kAuthorGroup<ON::Outline>};

// --- Table, Column, Row, Cell -----------------------------------------------------------------

MacroValue GetRowCount(OneNoteObject& o) {
    return MacroValue(static_cast<std::int32_t>(ElementOf<ON::Table>(o).rows.size()));
}
MacroValue GetRows(OneNoteObject& o) {
    return ObjectArray(ObjectsFor(o.session(), Self(o).page(), ElementOf<ON::Table>(o).rows.items()));
}
MacroValue GetColCount(OneNoteObject& o) {
    const ON::Table& table = ElementOf<ON::Table>(o);
    if (table.columns) return MacroValue(static_cast<std::int32_t>(table.columns->columns.size()));
    return MacroValue(static_cast<std::int32_t>(table.rows.empty() ? 0 : table.rows[0]->cells.size()));
}
MacroValue GetColumns(OneNoteObject& o) {
    const ON::Table& table = ElementOf<ON::Table>(o);
    if (!table.columns) return ObjectArray({});
    return ObjectArray(ObjectsFor(o.session(), Self(o).page(), table.columns->columns.items()));
}

constexpr PropertyDef kTableOwn[] = {
    kTypeProperty,
    Attribute<ON::Table, &ON::Table::objectID>(u"objectId", RW),
    Attribute<ON::Table, &ON::Table::bordersVisible>(u"bordersVisible", RW),
    Attribute<ON::Table, &ON::Table::selected>(u"selection", RW),
    Attribute<ON::Table, &ON::Table::lastModifiedTime>(u"lastModifiedTime", RW),
    {u"rowCount", K::Integer, RO, &GetRowCount},
    {u"rows", K::Array, RO, &GetRows},
    {u"colCount", K::Integer, RO, &GetColCount},
    {u"columns", K::Array, RO, &GetColumns},
};
constexpr PropertyTable kTableTables[] = {kTableOwn, kAuthorGroup<ON::Table>};

MacroValue GetColumnIndex(OneNoteObject& o) {
    const ON::Column& column = ElementOf<ON::Column>(o);
    if (column.index) return MacroValue(column.index->value());
    const auto* list = dynamic_cast<const xml::ChildList<ON::Column>*>(column.owner);
    return MacroValue(list ? IndexIn(*list, column) : 0);
}

constexpr PropertyDef kColumnOwn[] = {
    kTypeProperty,
    {u"index", K::Integer, RO, &GetColumnIndex},
    Attribute<ON::Column, &ON::Column::width>(u"width", RW),
    Attribute<ON::Column, &ON::Column::isLocked>(u"isLocked", RW),
};
constexpr PropertyTable kColumnTables[] = {kColumnOwn};

template <class E>
std::int32_t PositionInOwner(const E& element) {
    const auto* list = dynamic_cast<const xml::ChildList<E>*>(element.owner);
    return list ? IndexIn(*list, element) : 0;
}

MacroValue GetRowIndex(OneNoteObject& o) { return MacroValue(PositionInOwner(ElementOf<ON::Row>(o))); }
MacroValue GetCells(OneNoteObject& o) {
    return ObjectArray(ObjectsFor(o.session(), Self(o).page(), ElementOf<ON::Row>(o).cells.items()));
}

constexpr PropertyDef kRowOwn[] = {
    kTypeProperty,
    Attribute<ON::Row, &ON::Row::objectID>(u"objectId", RW),
    Attribute<ON::Row, &ON::Row::selected>(u"selection", RW),
    Attribute<ON::Row, &ON::Row::lastModifiedTime>(u"lastModifiedTime", RW),
    {u"index", K::Integer, RO, &GetRowIndex},
    {u"cells", K::Array, RO, &GetCells},
};
constexpr PropertyTable kRowTables[] = {kRowOwn, kAuthorGroup<ON::Row>};

MacroValue GetCellColumn(OneNoteObject& o) { return MacroValue(PositionInOwner(ElementOf<ON::Cell>(o))); }
MacroValue GetCellRow(OneNoteObject& o) {
    const ON::Row* row = ON::AncestorOf<ON::Row>(ElementOf<ON::Cell>(o));
    return MacroValue(row ? PositionInOwner(*row) : 0);
}

constexpr PropertyDef kCellOwn[] = {
    kTypeProperty,
    Attribute<ON::Cell, &ON::Cell::objectID>(u"objectId", RW),
    Attribute<ON::Cell, &ON::Cell::selected>(u"selection", RW),
    Attribute<ON::Cell, &ON::Cell::lastModifiedTime>(u"lastModifiedTime", RW),
    {u"colIndex", K::Integer, RO, &GetCellColumn},
    {u"rowIndex", K::Integer, RO, &GetCellRow},
    {u"paragraphs", K::Array, RO, &GetParagraphs<ON::Cell>},
    {u"text", K::String, RW, &GetTextOfList<ON::Cell>, &SetTextOfList<ON::Cell>},
    {u"text_numeric", K::Number, RW, &GetNumberOfList<ON::Cell>, &SetNumberOfList<ON::Cell>},
};
constexpr PropertyTable kCellTables[] = {kCellOwn, kAuthorGroup<ON::Cell>};

// --- Image, EmbeddedFile, Tag -----------------------------------------------------------------

constexpr PropertyDef kImageOwn[] = {
    kTypeProperty,
    Attribute<ON::Image, &ON::Image::format>(u"format", RW),
    Attribute<ON::Image, &ON::Image::xpsFileIndex>(u"printOutFileNumber", RW),
    Attribute<ON::Image, &ON::Image::originalDocumentNumber>(u"printOutDocumentNumber", RW),
    Attribute<ON::Image, &ON::Image::originalPageNumber>(u"printOutPageNumber", RW),
    Attribute<ON::Image, &ON::Image::isPrintOut>(u"isPrintOut", RW),
    Attribute<ON::Image, &ON::Image::backgroundImage>(u"background", RW),
    Attribute<ON::Image, &ON::Image::hyperlink>(u"hyperlink", RW),
    Attribute<ON::Image, &ON::Image::alt>(u"altText", RW),
};
constexpr PropertyTable kImageTables[] = {kImageOwn, kTagGroupOf<ON::Image>, kPageObjectGroup<ON::Image>};

constexpr PropertyDef kEmbeddedFileOwn[] = {
    kTypeProperty,
    Attribute<ON::InsertedFile, &ON::InsertedFile::preferredName>(u"fileName", RO),
};
constexpr PropertyTable kEmbeddedFileTables[] = {kEmbeddedFileOwn, kTagGroupOf<ON::InsertedFile>,
                                                 kPageObjectGroup<ON::InsertedFile>};

template <class T, T ON::TagDef::*Member>
MacroValue GetOwnDef(OneNoteObject& o) {
    const ON::TagDef* def = DefinitionOf(Self(o), ElementOf<ON::Tag>(o));
    return def ? ToValue(def->*Member) : MacroValue();
}

constexpr PropertyDef kTagOwn[] = {
    kTypeProperty,
    {u"name", K::String, RO, &GetOwnDef<ON::String, &ON::TagDef::name>},
    {u"symbol", K::Integer, RO, &GetOwnDef<ON::OptInt, &ON::TagDef::symbol>},
    {u"fontColor", K::String, RO, &GetOwnDef<ON::String, &ON::TagDef::fontColor>},
    {u"highlightColor", K::String, RO, &GetOwnDef<ON::String, &ON::TagDef::highlightColor>},
    Attribute<ON::Tag, &ON::Tag::completed>(u"completed", RW),
    Attribute<ON::Tag, &ON::Tag::disabled>(u"disabled", RW),
    Attribute<ON::Tag, &ON::Tag::creationDate>(u"creationDate", RW),
    Attribute<ON::Tag, &ON::Tag::completionDate>(u"completionDate", RW),
};
constexpr PropertyTable kTagTables[] = {kTagOwn};

// --- element kinds ----------------------------------------------------------------------------

struct ContentKind {
    std::u16string_view element;
    ObjectType type;
    std::shared_ptr<xml::ChildElement> (*share)(xml::ChildElement&);
};

constexpr ContentKind kContentKinds[] = {
    {ON::OE::kName, ObjectType::Paragraph, &Shared<ON::OE>},
    {ON::Title::kName, ObjectType::Title, &Shared<ON::Title>},
    {ON::Outline::kName, ObjectType::Outline, &Shared<ON::Outline>},
    {ON::Table::kName, ObjectType::Table, &Shared<ON::Table>},
    {ON::Row::kName, ObjectType::Row, &Shared<ON::Row>},
    {ON::Column::kName, ObjectType::Column, &Shared<ON::Column>},
    {ON::Cell::kName, ObjectType::Cell, &Shared<ON::Cell>},
    {ON::Image::kName, ObjectType::Image, &Shared<ON::Image>},
    {ON::InsertedFile::kName, ObjectType::EmbeddedFile, &Shared<ON::InsertedFile>},
    {ON::Tag::kName, ObjectType::Tag, &Shared<ON::Tag>},
};

const ContentKind* KindOf(const xml::ChildElement& element) {
    const std::u16string_view name = element.ElementName();
    for (const ContentKind& kind : kContentKinds) {
        if (kind.element == name) return &kind;
    }
    return nullptr;
}

template <class E>
void AddAll(std::vector<std::shared_ptr<xml::ChildElement>>& out, const std::vector<std::shared_ptr<E>>& items) {
    out.insert(out.end(), items.begin(), items.end());
}

}  // namespace

// --- PageContentObject ------------------------------------------------------------------------

PageContentObject::PageContentObject(Session& session, ObjectType type, std::shared_ptr<LoadedPage> page,
                                     std::shared_ptr<xml::ChildElement> element)
    : OneNoteObject(session, type), page_(std::move(page)), element_(std::move(element)) {}

std::span<const PropertyTable> PageContentObject::Tables() const { return ContentTables(type()); }

bool PageContentObject::SameAs(const MacroObject& other) const {
    const auto* that = dynamic_cast<const PageContentObject*>(&other);
    return that != nullptr && that->element_ == element_ && that->page_->document == page_->document;
}

std::u16string PageContentObject::Describe() const {
    const std::u16string type = TypeName();
    std::u16string text;
    if (const auto* oe = dynamic_cast<const ON::OE*>(element_.get())) {
        text = ParagraphTextOf(*oe);
    } else if (const auto* outline = dynamic_cast<const ON::Outline*>(element_.get())) {
        text = ListText(outline->oeChildren);
    } else if (const auto* title = dynamic_cast<const ON::Title*>(element_.get())) {
        if (title->oe) text = ParagraphTextOf(*title->oe);
    } else if (const auto* cell = dynamic_cast<const ON::Cell*>(element_.get())) {
        text = ListText(cell->oeChildren);
    } else {
        return type + u" (" + type + u")";
    }
    return type + u" \"" + ShortText(text) + u"\" (" + type + u")";
}

void PageContentObject::Written(const PropertyDef&) { session().PageModified(*page_); }

std::span<const PropertyTable> ContentTables(ObjectType type) {
    switch (type) {
        case ObjectType::Title: return kTitleTables;
        case ObjectType::Outline: return kOutlineTables;
        case ObjectType::Paragraph: return ParagraphTables();
        case ObjectType::Table: return kTableTables;
        case ObjectType::Row: return kRowTables;
        case ObjectType::Column: return kColumnTables;
        case ObjectType::Cell: return kCellTables;
        case ObjectType::Image: return kImageTables;
        case ObjectType::EmbeddedFile: return kEmbeddedFileTables;
        case ObjectType::Tag: return kTagTables;
        default: return {};
    }
}

// The paragraph's tag group and author group, for paragraph_properties.cpp.
PropertyTable ParagraphTagGroup() { return kTagGroupOf<ON::OE>; }
PropertyTable ParagraphAuthorGroup() { return kAuthorGroup<ON::OE>; }

std::optional<ObjectType> ContentTypeOf(const xml::ChildElement& element) {
    const ContentKind* kind = KindOf(element);
    return kind ? std::optional<ObjectType>(kind->type) : std::nullopt;
}

ObjectRef MakeContentObject(Session& session, const std::shared_ptr<LoadedPage>& page, xml::ChildElement& element) {
    const ContentKind* kind = KindOf(element);
    if (!kind) return nullptr;
    std::shared_ptr<xml::ChildElement> shared = kind->share(element);
    if (!shared) return nullptr;
    return std::make_shared<PageContentObject>(session, kind->type, page, std::move(shared));
}

std::vector<std::shared_ptr<ON::OE>> ParagraphsOf(const xml::ChildList<ON::OEChildren>& lists) {
    std::vector<std::shared_ptr<ON::OE>> paragraphs;
    for (const auto& list : lists) {
        for (const auto& item : list->items) {
            if (item->oe) paragraphs.push_back(item->oe);
        }
    }
    return paragraphs;
}

std::vector<std::shared_ptr<ON::Tag>> TagsOf(const xml::ChildList<ON::TagChoice>& holder) {
    std::vector<std::shared_ptr<ON::Tag>> tags;
    for (const auto& choice : holder) {
        if (choice->tag) tags.push_back(choice->tag);
    }
    return tags;
}

std::vector<std::shared_ptr<xml::ChildElement>> ContentChildren(const xml::ChildElement& element) {
    std::vector<std::shared_ptr<xml::ChildElement>> children;
    if (const auto* page = dynamic_cast<const ON::Page*>(&element)) {
        if (page->title) children.push_back(page->title);
        for (const auto& choice : page->elements) {
            if (choice->outline) children.push_back(choice->outline);
            if (choice->image) children.push_back(choice->image);
            if (choice->insertedFile) children.push_back(choice->insertedFile);
        }
    } else if (const auto* oe = dynamic_cast<const ON::OE*>(&element)) {
        AddAll(children, TagsOf(oe->tags));
        for (const auto& choice : oe->content) {
            if (choice->table) children.push_back(choice->table);
            if (choice->image) children.push_back(choice->image);
            if (choice->insertedFile) children.push_back(choice->insertedFile);
        }
        AddAll(children, ParagraphsOf(oe->oeChildren));
    } else if (const auto* title = dynamic_cast<const ON::Title*>(&element)) {
        if (title->oe) children.push_back(title->oe);
    } else if (const auto* outline = dynamic_cast<const ON::Outline*>(&element)) {
        AddAll(children, ParagraphsOf(outline->oeChildren));
    } else if (const auto* table = dynamic_cast<const ON::Table*>(&element)) {
        if (table->columns) AddAll(children, table->columns->columns.items());
        AddAll(children, table->rows.items());
    } else if (const auto* row = dynamic_cast<const ON::Row*>(&element)) {
        AddAll(children, row->cells.items());
    } else if (const auto* cell = dynamic_cast<const ON::Cell*>(&element)) {
        AddAll(children, ParagraphsOf(cell->oeChildren));
    } else if (const auto* image = dynamic_cast<const ON::Image*>(&element)) {
        AddAll(children, TagsOf(image->tags));
    } else if (const auto* file = dynamic_cast<const ON::InsertedFile*>(&element)) {
        AddAll(children, TagsOf(file->tags));
    }
    return children;
}

}  // namespace qm::onenote
