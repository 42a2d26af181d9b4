// QueryObjects and the built-ins that find the notebook root and what OneNote currently shows.
//
// The current notebook, section and page are the ones OneNote marks isCurrentlyViewed; each is
// found fetching only the path down to it (the notebook list, the current notebook's sections,
// the current section's pages). Without such a mark the function yields the empty value.
#include <algorithm>

#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/page_text.h"
#include "onenote/session.h"

namespace qm::onenote {
namespace {

Level LevelNeeded(ObjectType wanted) {
    switch (wanted) {
        case ObjectType::NotebookRoot: return Level::None;
        case ObjectType::Notebook: return Level::Notebooks;
        case ObjectType::SectionGroup:
        case ObjectType::Section: return Level::Sections;
        case ObjectType::Page: return Level::Pages;
        default: return Level::PageContents;
    }
}

// Whether the hierarchy below a node of this kind can hold the wanted type.
bool Descend(ObjectType node, ObjectType wanted) {
    switch (node) {
        case ObjectType::NotebookRoot: return wanted != ObjectType::NotebookRoot;
        case ObjectType::Notebook:
        case ObjectType::SectionGroup: return Number(wanted) > Number(ObjectType::Notebook);
        case ObjectType::Section: return Number(wanted) >= Number(ObjectType::Page);
        case ObjectType::Page: return IsPageContentType(wanted);
        default: return false;
    }
}

// One step of the walk: a hierarchy element (page null) or an element of a loaded page.
struct WalkItem {
    xml::ChildElement* element;
    std::shared_ptr<LoadedPage> page;
};

bool IsViewed(const HierarchyObject& object) {
    return object.attributes() != nullptr && *object.attributes()->isCurrentlyViewed;
}

// The objects of the wanted type in the subtree of the scope (the scope itself included), in
// document order. The walk keeps its own list of pending elements: pages and hierarchies nest
// as deep as they like.
void Walk(Session& session, WalkItem start, ObjectType wanted, std::vector<ObjectRef>& out) {
    std::vector<WalkItem> pending{std::move(start)};
    std::vector<std::shared_ptr<xml::ChildElement>> children;
    while (!pending.empty()) {
        WalkItem item = std::move(pending.back());
        pending.pop_back();
        children.clear();
        if (!item.page) {
            std::shared_ptr<HierarchyObject> object = session.ObjectOf(*item.element);
            if (!object) continue;
            if (object->type() == wanted) out.push_back(object);
            if (!Descend(object->type(), wanted)) continue;
            if (object->type() == ObjectType::Page) {
                std::shared_ptr<LoadedPage> loaded = session.LoadedContent(object->id());
                if (loaded && loaded->document) pending.push_back({loaded->document.get(), loaded});
                continue;
            }
            if (auto* root = dynamic_cast<ON::Notebooks*>(item.element)) {
                children.assign(root->notebooks.begin(), root->notebooks.end());
            } else if (auto* section = dynamic_cast<ON::Section*>(item.element)) {
                children.assign(section->pages.begin(), section->pages.end());
            } else {
                const auto* notebook = dynamic_cast<ON::Notebook*>(item.element);
                const auto* group = dynamic_cast<ON::SectionGroup*>(item.element);
                const xml::ChildList<ON::SectionChoice>* choices =
                    notebook ? &notebook->children : (group ? &group->children : nullptr);
                if (choices) {
                    for (const auto& choice : *choices) {
                        if (choice->sectionGroup) children.push_back(choice->sectionGroup);
                        if (choice->section) children.push_back(choice->section);
                    }
                }
            }
            for (auto it = children.rbegin(); it != children.rend(); ++it) pending.push_back({it->get(), nullptr});
            continue;
        }
        const std::optional<ObjectType> type = ContentTypeOf(*item.element);
        if (type == wanted) {
            if (ObjectRef object = MakeContentObject(session, item.page, *item.element)) out.push_back(std::move(object));
        }
        if (wanted == ObjectType::Text && type == ObjectType::Paragraph) {
            std::vector<ObjectRef> texts =
                TextObjectsOf(item.page, static_cast<ON::OE&>(*item.element));
            out.insert(out.end(), texts.begin(), texts.end());
        }
        // Titles and outlines stand on the page itself: nothing below them is one.
        if (type && (wanted == ObjectType::Title || wanted == ObjectType::Outline)) continue;
        children = ContentChildren(*item.element);
        for (auto it = children.rbegin(); it != children.rend(); ++it) pending.push_back({it->get(), item.page});
    }
}

}  // namespace

MacroValue Session::QueryObjects(const MacroValue& type, const MacroValue& scope) {
    constexpr std::u16string_view kFunction = u"QueryObjects";
    if (scope.kind() != Kind::Object || !scope.object()) {
        throw MacroError(FormatMessage(msg::kExpectedObjectSecond, {kFunction}));
    }
    std::optional<ObjectType> wanted;
    if (type.kind() != Kind::Array && type.kind() != Kind::Object) wanted = TypeFromName(type.AsString());
    if (!wanted) {
        const std::u16string text = type.kind() == Kind::Array || type.kind() == Kind::Object ? type.DescribeShort()
                                                                                             : type.AsString();
        throw MacroError(FormatMessage(msg::kUnknownObjectType, {text, kFunction}));
    }
    const ObjectRef& object = scope.object();
    if (log_) {
        std::u16string line(msg::kLogQuerying);
        line += LogName(*wanted);
        line += msg::kLogIn;
        line += object->Describe();
        LogLine(log_, line);
    }
    return ObjectArray(Collect(object, *wanted, kFunction));
}

std::vector<ObjectRef> Session::Collect(const ObjectRef& scope, ObjectType wanted, std::u16string_view function) {
    std::vector<ObjectRef> found;
    if (auto* hierarchy = dynamic_cast<HierarchyObject*>(scope.get())) {
        if (wanted != ObjectType::NotebookRoot) Fetch(*hierarchy, LevelNeeded(wanted));
        Walk(*this, {hierarchy->node(), nullptr}, wanted, found);
    } else if (auto* content = dynamic_cast<PageContentObject*>(scope.get())) {
        Walk(*this, {content->node(), content->page()}, wanted, found);
    } else if (scope->TypeNumber() == Number(ObjectType::Text)) {
        if (wanted == ObjectType::Text) found.push_back(scope);
    } else {
        throw MacroError(FormatMessage(msg::kExpectedOneNoteObject, {function, msg::kSecond}));
    }
    return found;
}

MacroValue Session::GetNotebookRoot() { return MacroValue(ObjectRef(root_)); }

namespace {

std::shared_ptr<HierarchyObject> ViewedAmong(Session& session, HierarchyObject& parent, ObjectType type) {
    for (const ObjectRef& child : session.Children(parent, type)) {
        auto object = std::static_pointer_cast<HierarchyObject>(child);
        if (IsViewed(*object)) return object;
    }
    return nullptr;
}

std::shared_ptr<HierarchyObject> CurrentNotebook(Session& session) {
    return ViewedAmong(session, *session.root(), ObjectType::Notebook);
}

// The viewed section anywhere in the notebook, looking into the viewed section group first.
std::shared_ptr<HierarchyObject> CurrentSection(Session& session) {
    std::shared_ptr<HierarchyObject> container = CurrentNotebook(session);
    if (!container) return nullptr;
    session.Fetch(*container, Level::Sections);
    std::vector<std::shared_ptr<HierarchyObject>> pending{container};
    while (!pending.empty()) {
        std::shared_ptr<HierarchyObject> node = std::move(pending.back());
        pending.pop_back();
        if (auto section = ViewedAmong(session, *node, ObjectType::Section)) return section;
        std::vector<ObjectRef> groups = session.Children(*node, ObjectType::SectionGroup);
        // Viewed groups are searched first (they are taken from the back of the list).
        std::stable_partition(groups.begin(), groups.end(),
                              [](const ObjectRef& g) { return !IsViewed(static_cast<HierarchyObject&>(*g)); });
        for (const ObjectRef& group : groups) pending.push_back(std::static_pointer_cast<HierarchyObject>(group));
    }
    return nullptr;
}

MacroValue ValueOf(const std::shared_ptr<HierarchyObject>& object) {
    return object ? MacroValue(ObjectRef(object)) : MacroValue();
}

}  // namespace

MacroValue Session::GetCurrentNotebook() { return ValueOf(CurrentNotebook(*this)); }

MacroValue Session::GetCurrentSection() { return ValueOf(CurrentSection(*this)); }

MacroValue Session::GetCurrentPage() {
    std::shared_ptr<HierarchyObject> section = CurrentSection(*this);
    return ValueOf(section ? ViewedAmong(*this, *section, ObjectType::Page) : nullptr);
}

MacroValue Session::GetCurrentSectionGroup() {
    std::shared_ptr<HierarchyObject> section = CurrentSection(*this);
    if (!section) return MacroValue();
    std::shared_ptr<HierarchyObject> parent = TreeParent(*section);
    return ValueOf(parent && parent->type() == ObjectType::SectionGroup ? parent : CurrentNotebook(*this));
}

}  // namespace qm::onenote
