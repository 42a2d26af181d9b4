#include "onenote/hierarchy_objects.h"

#include "core/format.h"
#include "onenote/session.h"

namespace qm::onenote {
namespace {

ON::HierarchyObjectAttributes* AttributesOf(xml::ChildElement& element) {
    return dynamic_cast<ON::HierarchyObjectAttributes*>(&element);
}

HierarchyObject& Self(OneNoteObject& object) { return static_cast<HierarchyObject&>(object); }

// --- the hierarchy group ----------------------------------------------------------------------

MacroValue GetId(OneNoteObject& object) { return ToValue(Self(object).attributes()->ID); }
MacroValue GetName(OneNoteObject& object) { return ToValue(Self(object).attributes()->name); }
void SetName(OneNoteObject& object, const MacroValue& value) { FromValue(value, Self(object).attributes()->name); }
MacroValue GetLastModified(OneNoteObject& object) { return ToValue(Self(object).attributes()->lastModifiedTime); }
void SetLastModified(OneNoteObject& object, const MacroValue& value) {
    FromValue(value, Self(object).attributes()->lastModifiedTime);
}
MacroValue GetViewed(OneNoteObject& object) { return ToValue(Self(object).attributes()->isCurrentlyViewed); }
MacroValue GetInRecycleBin(OneNoteObject& object) { return ToValue(Self(object).attributes()->isInRecycleBin); }
MacroValue GetHyperlink(OneNoteObject& object) {
    return MacroValue(object.session().Hyperlink(Self(object).id(), u""));
}

constexpr PropertyDef kHierarchyGroup[] = {
    {u"id", PropertyKind::String, Access::ReadOnly, &GetId},
    {u"name", PropertyKind::String, Access::ReadWrite, &GetName, &SetName},
    {u"lastModifiedTime", PropertyKind::DateTime, Access::ReadWrite, &GetLastModified, &SetLastModified},
    {u"isCurrentlyViewed", PropertyKind::Bool, Access::ReadOnly, &GetViewed},
    {u"isInRecycleBin", PropertyKind::Bool, Access::ReadOnly, &GetInRecycleBin},
    {u"hyperlink", PropertyKind::String, Access::ReadOnly, &GetHyperlink},
};

// On a page the name comes from its title: read only.
constexpr PropertyDef kPageHierarchyGroup[] = {
    {u"id", PropertyKind::String, Access::ReadOnly, &GetId},
    {u"name", PropertyKind::String, Access::ReadOnly, &GetName},
    {u"lastModifiedTime", PropertyKind::DateTime, Access::ReadWrite, &GetLastModified, &SetLastModified},
    {u"isCurrentlyViewed", PropertyKind::Bool, Access::ReadOnly, &GetViewed},
    {u"isInRecycleBin", PropertyKind::Bool, Access::ReadOnly, &GetInRecycleBin},
    {u"hyperlink", PropertyKind::String, Access::ReadOnly, &GetHyperlink},
};

MacroValue GetPath(OneNoteObject& object) {
    return ToValue(dynamic_cast<ON::FileObjectAttributes&>(*object.node()).path);
}

constexpr PropertyDef kFileGroup[] = {
    {u"path", PropertyKind::String, Access::ReadOnly, &GetPath},
};

// --- children ---------------------------------------------------------------------------------

template <ObjectType Kind>
MacroValue GetChildren(OneNoteObject& object) {
    return ObjectArray(object.session().Children(Self(object), Kind));
}
template <ObjectType Kind>
MacroValue GetChildCount(OneNoteObject& object) {
    return MacroValue(static_cast<std::int32_t>(object.session().Children(Self(object), Kind).size()));
}

// --- the types --------------------------------------------------------------------------------

constexpr PropertyDef kRootOwn[] = {
    kTypeProperty,
    {u"notebooks", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::Notebook>},
};
constexpr PropertyTable kRootTables[] = {kRootOwn};

constexpr PropertyDef kNotebookOwn[] = {
    kTypeProperty,
    Attribute<ON::Notebook, &ON::Notebook::nickname>(u"nickname", Access::ReadWrite),
    Attribute<ON::Notebook, &ON::Notebook::color>(u"color", Access::ReadWrite),
    Attribute<ON::Notebook, &ON::Notebook::isUnread>(u"isUnread", Access::ReadWrite),
    {u"sectionCount", PropertyKind::Integer, Access::ReadOnly, &GetChildCount<ObjectType::Section>},
    {u"sections", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::Section>},
    {u"sectionGroupCount", PropertyKind::Integer, Access::ReadOnly, &GetChildCount<ObjectType::SectionGroup>},
    {u"sectionGroups", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::SectionGroup>},
};
constexpr PropertyTable kNotebookTables[] = {kNotebookOwn, kHierarchyGroup, kFileGroup};

constexpr PropertyDef kSectionGroupOwn[] = {
    kTypeProperty,
    Attribute<ON::SectionGroup, &ON::SectionGroup::isUnread>(u"isUnread", Access::ReadWrite),
    Attribute<ON::SectionGroup, &ON::SectionGroup::isRecycleBin>(u"isRecycleBin", Access::ReadOnly),
    {u"sectionCount", PropertyKind::Integer, Access::ReadOnly, &GetChildCount<ObjectType::Section>},
    {u"sections", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::Section>},
    {u"sectionGroupCount", PropertyKind::Integer, Access::ReadOnly, &GetChildCount<ObjectType::SectionGroup>},
    {u"sectionGroups", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::SectionGroup>},
};
constexpr PropertyTable kSectionGroupTables[] = {kSectionGroupOwn, kHierarchyGroup, kFileGroup};

constexpr PropertyDef kSectionOwn[] = {
    kTypeProperty,
    Attribute<ON::Section, &ON::Section::color>(u"color", Access::ReadWrite),
    Attribute<ON::Section, &ON::Section::encrypted>(u"encrypted", Access::ReadOnly),
    Attribute<ON::Section, &ON::Section::locked>(u"locked", Access::ReadOnly),
    Attribute<ON::Section, &ON::Section::isUnread>(u"isUnread", Access::ReadWrite),
    Attribute<ON::Section, &ON::Section::readOnly>(u"readOnly", Access::ReadOnly),
    Attribute<ON::Section, &ON::Section::areAllPagesAvailable>(u"areAllPagesAvailable", Access::ReadOnly),
    Attribute<ON::Section, &ON::Section::isDeletedPages>(u"isDeletedPages", Access::ReadOnly),
    {u"pageCount", PropertyKind::Integer, Access::ReadOnly, &GetChildCount<ObjectType::Page>},
    {u"pages", PropertyKind::Array, Access::ReadOnly, &GetChildren<ObjectType::Page>},
};
constexpr PropertyTable kSectionTables[] = {kSectionOwn, kHierarchyGroup, kFileGroup};

constexpr PropertyDef kPageOwn[] = {
    kTypeProperty,
    Attribute<ON::Page, &ON::Page::dateTime>(u"dateTime", Access::ReadWrite),
    Attribute<ON::Page, &ON::Page::selected>(u"selection", Access::ReadWrite),
    Attribute<ON::Page, &ON::Page::pageLevel>(u"pageLevel", Access::ReadWrite),
    Attribute<ON::Page, &ON::Page::isCollapsed>(u"isCollapsed", Access::ReadWrite),
    Attribute<ON::Page, &ON::Page::isUnread>(u"isUnread", Access::ReadWrite),
    Attribute<ON::Page, &ON::Page::isIndexed>(u"isIndexed", Access::ReadOnly),
    Attribute<ON::Page, &ON::Page::stationeryName>(u"stationeryName", Access::ReadOnly),
};

std::span<const PropertyTable> PageTables() {
    static const PropertyTable tables[] = {kPageOwn, PageContentProperties(), kPageHierarchyGroup};
    return tables;
}

// The page attributes a macro may write, copied from the hierarchy's page element to the loaded
// content, so that saving the page does not undo them.
void CopyWritableAttributes(const ON::Page& from, ON::Page& to) {
    to.lastModifiedTime = from.lastModifiedTime;
    to.dateTime = from.dateTime;
    to.selected = from.selected;
    to.pageLevel = from.pageLevel;
    to.isCollapsed = from.isCollapsed;
    to.isUnread = from.isUnread;
}

}  // namespace

// --- HierarchyObject --------------------------------------------------------------------------

HierarchyObject::HierarchyObject(Session& session, ObjectType type, std::shared_ptr<xml::ChildElement> element)
    : OneNoteObject(session, type), element_(std::move(element)), attributes_(AttributesOf(*element_)) {}

std::u16string HierarchyObject::id() const {
    return attributes_ && attributes_->ID ? *attributes_->ID : std::u16string();
}

std::u16string HierarchyObject::name() const {
    return attributes_ && attributes_->name ? *attributes_->name : std::u16string();
}

bool HierarchyObject::SameAs(const MacroObject& other) const {
    const auto* that = dynamic_cast<const HierarchyObject*>(&other);
    return that != nullptr && (that == this || SameNode(*this, *that));
}

bool SameNode(const HierarchyObject& a, const HierarchyObject& b) {
    if (a.type() != b.type()) return false;
    if (a.node() == b.node()) return true;
    return &a.session() == &b.session() && a.attributes() && b.attributes() && a.attributes()->ID &&
           a.attributes()->ID == b.attributes()->ID;
}

std::u16string HierarchyObject::Describe() const {
    const std::u16string type = TypeName();
    if (!attributes_) return std::u16string(LogName(this->type())) + u" (" + type + u")";
    return type + u" \"" + name() + u"\" (" + type + u")";
}

void HierarchyObject::Written(const PropertyDef&) {
    if (changed_) return;
    changed_ = true;
    session().HierarchyChanged(*this);
}

void HierarchyObject::MarkChildrenMoved() {
    childrenMoved_ = true;
    if (changed_) return;
    changed_ = true;
    session().HierarchyChanged(*this);
}

NotebookRootObject::NotebookRootObject(Session& session, std::shared_ptr<ON::Notebooks> notebooks)
    : HierarchyObject(session, ObjectType::NotebookRoot, std::move(notebooks)) {}
std::span<const PropertyTable> NotebookRootObject::Tables() const { return kRootTables; }

NotebookObject::NotebookObject(Session& session, std::shared_ptr<ON::Notebook> notebook)
    : HierarchyObject(session, ObjectType::Notebook, std::move(notebook)) {}
std::span<const PropertyTable> NotebookObject::Tables() const { return kNotebookTables; }

SectionGroupObject::SectionGroupObject(Session& session, std::shared_ptr<ON::SectionGroup> group)
    : HierarchyObject(session, ObjectType::SectionGroup, std::move(group)) {}
std::span<const PropertyTable> SectionGroupObject::Tables() const { return kSectionGroupTables; }

SectionObject::SectionObject(Session& session, std::shared_ptr<ON::Section> section)
    : HierarchyObject(session, ObjectType::Section, std::move(section)) {}
std::span<const PropertyTable> SectionObject::Tables() const { return kSectionTables; }

PageObject::PageObject(Session& session, std::shared_ptr<ON::Page> page)
    : HierarchyObject(session, ObjectType::Page, std::move(page)) {}
std::span<const PropertyTable> PageObject::Tables() const { return PageTables(); }

LoadedPage& PageObject::content() {
    // The page table holds the record for the rest of the run.
    return *session().LoadContent(*this);
}

void PageObject::Written(const PropertyDef& property) {
    if (property.content) {
        session().PageModified(content());
        return;
    }
    HierarchyObject::Written(property);
    if (auto loaded = session().LoadedContent(id()); loaded && loaded->document) {
        CopyWritableAttributes(hierarchyPage(), *loaded->document);
    }
}

void SyncLoadedPage(const PageObject& page, ON::Page& content) {
    if (page.changed()) CopyWritableAttributes(page.hierarchyPage(), content);
}

}  // namespace qm::onenote
