// The OneNote side of one macro run: the in-memory tree of notebooks, section groups, sections
// and pages filled from OneNote on demand, the page table of the pages the run loaded, and the
// built-ins that query and navigate it. One Session per run; it is the run's ObjectModel and its
// RunDocuments.
//
// Identity: one object per OneNote ID and kind for the whole run. A fetch that meets a node the
// run already holds keeps the held node (and whatever the macro changed on it) and only adds what
// is new below it.
//
// Fetching: each hierarchy object records how deep its subtree is known (Level). A query fetches
// below its scope only to the level the wanted type needs (notebooks 2, section groups and
// sections 3, pages 4, page content 5), with one GetHierarchy call cut to that scope; page
// content is loaded once per page per run, when something needs it. When a query loads many pages
// at once, their XML is read on worker threads while this thread fetches and holds the others;
// everything else (the calls to OneNote, the log, the tree, the page table) stays on the thread of
// the run, in page order.
//
// Saving, at the end of a run that saves (it finished, or ExitMacro(true)):
// - Hierarchy attributes a macro changed (names, colours, unread marks, a page's level or date)
//   are sent with UpdateHierarchy when the driver finalises the page table, before the pages are
//   counted: one call per changed node, holding that node alone (a page is sent inside its
//   section). They are not pages: they are neither counted nor subject to the multi-page
//   confirmation, and a failed, cancelled or ExitMacro(false) run sends none.
//   A node whose children a macro reordered (SortObjects, a page inserted at a position) is sent
//   with its children, each with its attributes only.
// - Modified pages are sent with UpdatePageContent, in page-table (load) order; their XML is
//   written on worker threads ahead of the sending.
// After saving, the pages' documents are let go: a page the run is done with keeps nothing but its
// bound form while a macro value still refers to it.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/evaluator.h"
#include "onenote/hierarchy_objects.h"
#include "onenote/onenote_api.h"
#include "runtime/execution_context.h"
#include "runtime/object_model.h"

namespace qm::onenote {

class TextHost;

// A page whose content the run loaded: its record in the page table.
struct LoadedPage {
    std::u16string id;
    std::shared_ptr<ON::Page> document;  // the bound content
    bool modified = false;
    std::shared_ptr<TextHost> textHost;  // what the page's Text objects report to
};

class Session final : public ObjectModel, public RunDocuments {
public:
    explicit Session(OneNoteApi& api);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() override;

    // The run's macro log while it is open; null: nothing is logged.
    void SetLog(LogSink* log) noexcept { log_ = log; }
    LogSink* log() const noexcept { return log_; }
    OneNoteApi& api() const noexcept { return *api_; }

    // --- ObjectModel ----------------------------------------------------------------------
    MacroValue QueryObjects(const MacroValue& type, const MacroValue& scope) override;
    MacroValue QueryText(const MacroValue& scope, const MacroValue& value, const MacroValue& ignoreCase) override;
    MacroValue InsertObject(const MacroValue& object, const MacroValue& type, const MacroValue& position) override;
    MacroValue SortObjects(const MacroValue& objects, const MacroValue& by, const MacroValue& ascending) override;
    MacroValue GetCurrentNotebook() override;
    MacroValue GetCurrentPage() override;
    MacroValue GetCurrentSection() override;
    MacroValue GetCurrentSectionGroup() override;
    MacroValue GetNotebookRoot() override;
    MacroValue GetParentOfType(const MacroValue& object, const MacroValue& type, Argument& parent) override;
    MacroValue GetAncestorOfType(const MacroValue& object, const MacroValue& type, Argument& ancestor) override;

    // --- RunDocuments ---------------------------------------------------------------------
    // Sends the changed hierarchy attributes, lets go of the pages nothing changed, and counts
    // the modified pages.
    std::size_t FinalizeModified() override;
    // Writes the modified pages back, in page-table order, then lets go of them.
    void SaveModified() override;

    // --- the tree, for the objects --------------------------------------------------------
    const std::shared_ptr<NotebookRootObject>& root() const noexcept { return root_; }
    // Makes sure the subtree below the object is known to the level, fetching (and logging) what
    // is missing. Level::PageContents also loads the content of every page below it.
    void Fetch(HierarchyObject& scope, Level level);
    // Fetches the subtree below the object to the level again (whatever is known already), to
    // see what OneNote has added; nothing is logged.
    void Refresh(HierarchyObject& scope, Level level);
    // The cached object of a hierarchy element of the tree.
    std::shared_ptr<HierarchyObject> ObjectOf(const xml::ChildElement& element) const;
    // The cached object of that kind and ID, or null.
    std::shared_ptr<HierarchyObject> ObjectById(ObjectType type, std::u16string_view id) const;
    // The direct children of a node of one type, in order, fetched as needed.
    std::vector<ObjectRef> Children(HierarchyObject& parent, ObjectType type);
    // The parent node in the tree (the root for a notebook); null for the root.
    std::shared_ptr<HierarchyObject> TreeParent(const HierarchyObject& object) const;

    // A page's content, loaded (and logged) on first use.
    std::shared_ptr<LoadedPage> LoadContent(PageObject& page);
    // The loaded content of a page, or null.
    std::shared_ptr<LoadedPage> LoadedContent(std::u16string_view pageId) const;
    // The loaded page whose content holds the element, or null.
    std::shared_ptr<LoadedPage> PageHolding(const xml::ChildElement& element) const;

    void PageModified(LoadedPage& page) noexcept { page.modified = true; }
    void HierarchyChanged(HierarchyObject& object);
    std::u16string Hyperlink(std::u16string_view hierarchyId, std::u16string_view objectId);

    // The objects of a type under a scope object (itself included), in document order, fetched
    // as deep as they need; `function` names the built-in in the error for a scope that is no
    // OneNote object.
    std::vector<ObjectRef> Collect(const ObjectRef& scope, ObjectType wanted, std::u16string_view function);
    // The parent of an object (Text, page content or hierarchy), or null.
    ObjectRef ParentOf(const MacroObject& object);

    // Counters for tests and measurements.
    std::size_t pagesLoaded() const noexcept { return pagesLoaded_; }

private:
    using Cache = std::map<std::u16string, std::shared_ptr<HierarchyObject>, std::less<>>;

    std::shared_ptr<HierarchyObject> Register(const std::shared_ptr<xml::ChildElement>& element, ObjectType type);
    // A fetched node still to be merged into the node the run holds for it.
    struct MergeStep {
        HierarchyObject* held;
        std::shared_ptr<xml::ChildElement> fetched;  // kept alive: its slot now holds the held node
    };
    using MergeSteps = std::vector<MergeStep>;

    // The held node for a fetched one: the node of that ID the run already holds, or the fetched
    // node, now held; either way the fetched node's children wait in `pending` to be merged.
    template <class E>
    std::shared_ptr<E> Resolve(const std::shared_ptr<E>& fetched, ObjectType type, MergeSteps& pending);
    void Merge(HierarchyObject& top, xml::ChildElement& fetched, Level level);
    void MergeOne(HierarchyObject& held, xml::ChildElement& fetched, Level level, MergeSteps& pending);
    void MergeChildren(xml::ChildList<ON::SectionChoice>& held, xml::ChildList<ON::SectionChoice>& fetched,
                       MergeSteps& pending);
    void LoadAllPages(HierarchyObject& scope);
    void LogRetrievingPage(const PageObject& page);
    // Enters a page's bound content into the page table.
    std::shared_ptr<LoadedPage> Hold(PageObject& page, std::shared_ptr<ON::Page> document);
    MacroValue WalkUp(const MacroValue& object, const MacroValue& type, Argument& out, bool parentOnly,
                      std::u16string_view function);
    void SaveHierarchyChanges();
    Cache& CacheOf(ObjectType type) { return caches_[static_cast<std::size_t>(Number(type))]; }
    const Cache& CacheOf(ObjectType type) const { return caches_[static_cast<std::size_t>(Number(type))]; }

    OneNoteApi* api_;
    LogSink* log_ = nullptr;
    std::shared_ptr<NotebookRootObject> root_;
    // One cache per kind (notebook, section group, section, page), keyed by ID.
    std::array<Cache, 6> caches_;
    // Every held node (the root included) by its element.
    std::unordered_map<const xml::ChildElement*, std::shared_ptr<HierarchyObject>> byElement_;
    // Hierarchy objects with changed attributes, in the order of their first change.
    std::vector<std::shared_ptr<HierarchyObject>> changed_;
    // The page table: loaded pages in load order, and by ID.
    std::vector<std::shared_ptr<LoadedPage>> pageTable_;
    std::map<std::u16string, std::size_t, std::less<>> pageIndex_;
    std::size_t pagesLoaded_ = 0;
};

// The log of the session the object belongs to.
LogSink* LogOf(const Session& session);

}  // namespace qm::onenote
