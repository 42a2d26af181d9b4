// The macro objects of the notebook hierarchy: the notebook root, notebooks, section groups,
// sections and pages. The session keeps exactly one object per OneNote ID for the whole run,
// over the one cached element of that ID, and records on it how deep its subtree has been fetched
// and whether a macro changed its attributes.
//
// A page's hierarchy attributes (name, dates, level, unread ...) are those of the page element in
// the hierarchy; its content properties (settings, outlines, images) read the page's content,
// which the session loads on first use.
#pragma once

#include <memory>
#include <string>

#include "onenote/object_properties.h"

namespace qm::onenote {

struct LoadedPage;

// How deep a node's subtree has been fetched (and the words the log uses for each level).
enum class Level : int {
    None = 0,
    Notebooks = 2,
    Sections = 3,
    Pages = 4,
    PageContents = 5,
};

class HierarchyObject : public OneNoteObject {
public:
    HierarchyObject(Session& session, ObjectType type, std::shared_ptr<xml::ChildElement> element);

    xml::ChildElement* node() const override { return element_.get(); }
    const std::shared_ptr<xml::ChildElement>& element() const noexcept { return element_; }
    // The ID, name and the other attributes every hierarchy node has; null for the root.
    ON::HierarchyObjectAttributes* attributes() const noexcept { return attributes_; }
    std::u16string id() const;
    std::u16string name() const;

    Level level() const noexcept { return level_; }
    void RaiseLevel(Level level) {
        if (level > level_) level_ = level;
    }
    // A macro wrote one of its hierarchy attributes: it goes to OneNote when the run's changes are
    // saved.
    bool changed() const noexcept { return changed_; }
    // The order of its children changed (a sort, a page moved into place): they go to OneNote
    // with it.
    bool childrenMoved() const noexcept { return childrenMoved_; }
    void MarkChildrenMoved();
    void ClearChanged() { changed_ = childrenMoved_ = false; }

    bool SameAs(const MacroObject& other) const override;
    // `Section "Ideas" (Section)`; the root is `notebook root (NotebookRoot)`.
    std::u16string Describe() const override;

protected:
    void Written(const PropertyDef& property) override;

private:
    std::shared_ptr<xml::ChildElement> element_;
    ON::HierarchyObjectAttributes* attributes_ = nullptr;
    Level level_ = Level::None;
    bool changed_ = false;
    bool childrenMoved_ = false;
};

class NotebookRootObject final : public HierarchyObject {
public:
    NotebookRootObject(Session& session, std::shared_ptr<ON::Notebooks> notebooks);
    std::span<const PropertyTable> Tables() const override;
    ON::Notebooks& notebooks() const { return static_cast<ON::Notebooks&>(*node()); }

protected:
    // The root answers every unknown name with the error, quiet or not.
    bool QuietReadsAllowed() const override { return false; }
};

class NotebookObject final : public HierarchyObject {
public:
    NotebookObject(Session& session, std::shared_ptr<ON::Notebook> notebook);
    std::span<const PropertyTable> Tables() const override;
};

class SectionGroupObject final : public HierarchyObject {
public:
    SectionGroupObject(Session& session, std::shared_ptr<ON::SectionGroup> group);
    std::span<const PropertyTable> Tables() const override;
};

class SectionObject final : public HierarchyObject {
public:
    SectionObject(Session& session, std::shared_ptr<ON::Section> section);
    std::span<const PropertyTable> Tables() const override;
};

class PageObject final : public HierarchyObject {
public:
    PageObject(Session& session, std::shared_ptr<ON::Page> page);
    std::span<const PropertyTable> Tables() const override;
    ON::Page& hierarchyPage() const { return static_cast<ON::Page&>(*node()); }
    // The page's content, loaded on first use.
    LoadedPage& content();

protected:
    void Written(const PropertyDef& property) override;
};

// The content properties of a page (settings, size, rule lines, its objects): page_settings.cpp.
PropertyTable PageContentProperties();

// Copies the page attributes a macro changed in the hierarchy into the page's content when it is
// loaded, so that saving the page keeps them.
void SyncLoadedPage(const PageObject& page, ON::Page& content);

// Whether two hierarchy elements are the same kind of node with the same ID.
bool SameNode(const HierarchyObject& a, const HierarchyObject& b);

}  // namespace qm::onenote
