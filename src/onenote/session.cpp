#include "onenote/session.h"

#include <algorithm>
#include <set>

#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/on_document.h"
#include "onenote/ordered_pipeline.h"
#include "onenote/page_text.h"

namespace qm::onenote {
namespace {

std::u16string_view LevelWords(Level level) {
    switch (level) {
        case Level::Notebooks: return msg::kLevelNotebooks;
        case Level::Sections: return msg::kLevelSections;
        case Level::Pages: return msg::kLevelPages;
        case Level::PageContents: return msg::kLevelPageContents;
        case Level::None: break;
    }
    return u"";
}

HierarchyScope ScopeOf(Level level) {
    switch (level) {
        case Level::Notebooks: return HierarchyScope::Notebooks;
        case Level::Sections: return HierarchyScope::Sections;
        default: return HierarchyScope::Pages;
    }
}

// The level a node of a kind needs for its children of a kind to be known.
Level LevelFor(ObjectType child) {
    switch (child) {
        case ObjectType::Notebook: return Level::Notebooks;
        case ObjectType::SectionGroup:
        case ObjectType::Section: return Level::Sections;
        default: return Level::Pages;
    }
}

// The fetched node as the kind of the held one; a document that holds another kind in its place
// is not the one asked for.
template <class E>
E& As(const HierarchyObject& held, xml::ChildElement& fetched) {
    auto* typed = dynamic_cast<E*>(&fetched);
    if (!typed) {
        throw ON::DocumentError(ON::DocumentError::Kind::Invalid,
                                FormatMessage(msg::kDocumentUnexpectedRoot, {FormatMessage(msg::kFileName, {held.id()}),
                                                                             u"\"" + std::u16string(E::kName) + u"\"",
                                                                             fetched.ElementName()}));
    }
    return *typed;
}

// A page's content as fetched, not yet bound. Its XML text lives only until it is.
struct FetchedPage {
    std::u16string xml;
    std::u16string name;  // the page as its errors name it
};

FetchedPage FetchPage(OneNoteApi& api, const std::u16string& id) {
    return {api.GetPageContent(id), FormatMessage(msg::kPageName, {id})};
}

// Touches nothing but the fetched page: it may run on any thread.
std::shared_ptr<ON::Page> ReadFetched(FetchedPage page) { return ON::ReadPage(page.xml, page.name); }

}  // namespace

LogSink* LogOf(const Session& session) { return session.log(); }

Session::Session(OneNoteApi& api) : api_(&api) {
    auto notebooks = std::make_shared<ON::Notebooks>();
    root_ = std::make_shared<NotebookRootObject>(*this, notebooks);
    byElement_[notebooks.get()] = root_;
}

Session::~Session() = default;

// --- the tree ---------------------------------------------------------------------------------

std::shared_ptr<HierarchyObject> Session::Register(const std::shared_ptr<xml::ChildElement>& element, ObjectType type) {
    std::shared_ptr<HierarchyObject> object;
    switch (type) {
        case ObjectType::Notebook:
            object = std::make_shared<NotebookObject>(*this, std::static_pointer_cast<ON::Notebook>(element));
            break;
        case ObjectType::SectionGroup:
            object = std::make_shared<SectionGroupObject>(*this, std::static_pointer_cast<ON::SectionGroup>(element));
            break;
        case ObjectType::Section:
            object = std::make_shared<SectionObject>(*this, std::static_pointer_cast<ON::Section>(element));
            break;
        default:
            object = std::make_shared<PageObject>(*this, std::static_pointer_cast<ON::Page>(element));
            object->RaiseLevel(Level::Pages);
            break;
    }
    const std::u16string id = object->id();
    if (!id.empty()) CacheOf(type).emplace(id, object);
    byElement_[element.get()] = object;
    return object;
}

template <class E>
std::shared_ptr<E> Session::Resolve(const std::shared_ptr<E>& fetched, ObjectType type, MergeSteps& pending) {
    const ON::String& id = fetched->ID;
    if (id && !id->empty()) {
        const Cache& cache = CacheOf(type);
        if (const auto found = cache.find(*id); found != cache.end()) {
            HierarchyObject& held = *found->second;
            pending.push_back({&held, fetched});
            return std::static_pointer_cast<E>(held.element());
        }
    }
    pending.push_back({Register(fetched, type).get(), fetched});
    return fetched;
}

void Session::MergeChildren(xml::ChildList<ON::SectionChoice>& held, xml::ChildList<ON::SectionChoice>& fetched,
                            MergeSteps& pending) {
    const std::vector<std::shared_ptr<ON::SectionChoice>> items = fetched.items();
    for (const auto& choice : held) {
        if (choice->section) choice->section->owner = nullptr;
        if (choice->sectionGroup) choice->sectionGroup->owner = nullptr;
    }
    for (const auto& choice : items) {
        if (choice->section) {
            choice->section = Resolve(choice->section, ObjectType::Section, pending);
            choice->section->owner = choice.get();
        }
        if (choice->sectionGroup) {
            choice->sectionGroup = Resolve(choice->sectionGroup, ObjectType::SectionGroup, pending);
            choice->sectionGroup->owner = choice.get();
        }
    }
    held.Clear();
    for (const auto& choice : items) held.Add(choice);
}

// Merges a fetched node into the node of the same ID the run holds. The held node keeps its own
// attributes (a macro may have changed them); its children are replaced by the fetched ones,
// held where the run knows them already, when the fetch reached them. Section groups nest as
// deep as the hierarchy does: the nodes still to merge wait in a list, not on the stack.
void Session::Merge(HierarchyObject& top, xml::ChildElement& fetched, Level level) {
    MergeSteps pending;
    MergeOne(top, fetched, level, pending);
    while (!pending.empty()) {
        const MergeStep step = std::move(pending.back());
        pending.pop_back();
        MergeOne(*step.held, *step.fetched, level, pending);
    }
}

void Session::MergeOne(HierarchyObject& held, xml::ChildElement& fetched, Level level, MergeSteps& pending) {
    switch (held.type()) {
        case ObjectType::NotebookRoot: {
            auto& to = static_cast<ON::Notebooks&>(*held.node());
            const std::vector<std::shared_ptr<ON::Notebook>> items = As<ON::Notebooks>(held, fetched).notebooks.items();
            std::vector<std::shared_ptr<ON::Notebook>> resolved;
            resolved.reserve(items.size());
            for (const auto& notebook : items) resolved.push_back(Resolve(notebook, ObjectType::Notebook, pending));
            to.notebooks.Clear();
            for (auto& notebook : resolved) to.notebooks.Add(std::move(notebook));
            break;
        }
        case ObjectType::Notebook:
            if (level >= Level::Sections) {
                MergeChildren(static_cast<ON::Notebook&>(*held.node()).children, As<ON::Notebook>(held, fetched).children,
                              pending);
            }
            break;
        case ObjectType::SectionGroup:
            if (level >= Level::Sections) {
                MergeChildren(static_cast<ON::SectionGroup&>(*held.node()).children,
                              As<ON::SectionGroup>(held, fetched).children, pending);
            }
            break;
        case ObjectType::Section:
            if (level >= Level::Pages) {
                auto& to = static_cast<ON::Section&>(*held.node());
                const std::vector<std::shared_ptr<ON::Page>> items = As<ON::Section>(held, fetched).pages.items();
                std::vector<std::shared_ptr<ON::Page>> resolved;
                resolved.reserve(items.size());
                for (const auto& page : items) resolved.push_back(Resolve(page, ObjectType::Page, pending));
                to.pages.Clear();
                for (auto& page : resolved) to.pages.Add(std::move(page));
            }
            break;
        default: break;
    }
    held.RaiseLevel(level);
}

void Session::Fetch(HierarchyObject& scope, Level level) {
    if (scope.type() == ObjectType::Page) {
        if (level == Level::PageContents) LoadContent(static_cast<PageObject&>(scope));
        return;
    }
    if (scope.type() == ObjectType::Section && level <= Level::Sections) return;
    if (scope.level() >= level) return;
    if (log_) {
        std::u16string line(msg::kLogRetrieving);
        line += LevelWords(level);
        line += msg::kLogUnder;
        line += scope.Describe();
        LogLine(log_, line);
    }
    const Level hierarchy = std::min(level, Level::Pages);
    if (scope.level() < hierarchy) Refresh(scope, hierarchy);
    if (level == Level::PageContents) {
        LoadAllPages(scope);
        scope.RaiseLevel(Level::PageContents);
    }
}

void Session::Refresh(HierarchyObject& scope, Level level) {
    const std::u16string id = scope.type() == ObjectType::NotebookRoot ? std::u16string() : scope.id();
    const std::u16string xml = api_->GetHierarchy(id, ScopeOf(level));
    const ON::HierarchyDocument fetched = ON::ReadHierarchy(xml, FormatMessage(msg::kFileName, {id}));
    Merge(scope, ON::RootOf(fetched), level);
}

void Session::LoadAllPages(HierarchyObject& scope) {
    // Section groups nest as deep as the hierarchy: walked with a list, not recursion.
    std::vector<xml::ChildElement*> pending{scope.node()};
    std::vector<std::shared_ptr<HierarchyObject>> pages;
    while (!pending.empty()) {
        xml::ChildElement* element = pending.back();
        pending.pop_back();
        const xml::ChildList<ON::SectionChoice>* children = nullptr;
        if (auto* root = dynamic_cast<ON::Notebooks*>(element)) {
            for (auto it = root->notebooks.items().rbegin(); it != root->notebooks.items().rend(); ++it) {
                pending.push_back(it->get());
            }
        } else if (auto* notebook = dynamic_cast<ON::Notebook*>(element)) {
            children = &notebook->children;
        } else if (auto* group = dynamic_cast<ON::SectionGroup*>(element)) {
            children = &group->children;
        } else if (auto* section = dynamic_cast<ON::Section*>(element)) {
            for (const auto& page : section->pages) {
                if (auto object = ObjectOf(*page)) pages.push_back(std::move(object));
            }
        }
        if (children) {
            for (auto it = children->items().rbegin(); it != children->items().rend(); ++it) {
                if ((*it)->section) pending.push_back((*it)->section.get());
                if ((*it)->sectionGroup) pending.push_back((*it)->sectionGroup.get());
            }
        }
    }
    // The pages are loaded as LoadContent loads them one after the other: logged, fetched and
    // held in this order, on this thread. Only reading the XML runs on worker threads, for the
    // pages fetched ahead. When a page fails (its fetch or its XML), the error is raised at that
    // page and nothing after it is logged or held; some of the pages after it may have been
    // fetched already.
    struct Wanted {
        PageObject* page;
        std::u16string id;
    };
    std::vector<Wanted> wanted;
    std::set<std::u16string, std::less<>> ids;
    for (const auto& page : pages) {
        auto& object = static_cast<PageObject&>(*page);
        std::u16string id = object.id();
        // Held already, or listed twice: LoadContent would not fetch it again.
        if (pageIndex_.contains(id) || !ids.insert(id).second) continue;
        wanted.push_back({&object, std::move(id)});
    }
    OrderedPipeline<FetchedPage, std::shared_ptr<ON::Page>> documents(
        wanted.size(), [&](std::size_t i) { return FetchPage(*api_, wanted[i].id); }, &ReadFetched);
    for (const Wanted& page : wanted) {
        LogRetrievingPage(*page.page);
        Hold(*page.page, documents.Next());
    }
}

std::shared_ptr<HierarchyObject> Session::ObjectOf(const xml::ChildElement& element) const {
    const auto found = byElement_.find(&element);
    return found == byElement_.end() ? nullptr : found->second;
}

std::shared_ptr<HierarchyObject> Session::ObjectById(ObjectType type, std::u16string_view id) const {
    if (!IsHierarchyType(type) || type == ObjectType::NotebookRoot) return nullptr;
    const Cache& cache = CacheOf(type);
    const auto found = cache.find(id);
    return found == cache.end() ? nullptr : found->second;
}

std::vector<ObjectRef> Session::Children(HierarchyObject& parent, ObjectType type) {
    Fetch(parent, LevelFor(type));
    std::vector<ObjectRef> children;
    auto add = [&](const xml::ChildElement& element) {
        if (auto object = ObjectOf(element)) children.push_back(std::move(object));
    };
    const xml::ChildList<ON::SectionChoice>* choices = nullptr;
    if (auto* root = dynamic_cast<ON::Notebooks*>(parent.node())) {
        if (type == ObjectType::Notebook) {
            for (const auto& notebook : root->notebooks) add(*notebook);
        }
    } else if (auto* notebook = dynamic_cast<ON::Notebook*>(parent.node())) {
        choices = &notebook->children;
    } else if (auto* group = dynamic_cast<ON::SectionGroup*>(parent.node())) {
        choices = &group->children;
    } else if (auto* section = dynamic_cast<ON::Section*>(parent.node())) {
        if (type == ObjectType::Page) {
            for (const auto& page : section->pages) add(*page);
        }
    }
    if (choices) {
        for (const auto& choice : *choices) {
            if (type == ObjectType::Section && choice->section) add(*choice->section);
            if (type == ObjectType::SectionGroup && choice->sectionGroup) add(*choice->sectionGroup);
        }
    }
    return children;
}

std::shared_ptr<HierarchyObject> Session::TreeParent(const HierarchyObject& object) const {
    const xml::ChildElement* parent = ON::ParentElement(*object.node());
    return parent ? ObjectOf(*parent) : nullptr;
}

// --- pages ------------------------------------------------------------------------------------

std::shared_ptr<LoadedPage> Session::LoadContent(PageObject& page) {
    const std::u16string id = page.id();
    if (const auto found = pageIndex_.find(id); found != pageIndex_.end()) return pageTable_[found->second];
    LogRetrievingPage(page);
    return Hold(page, ReadFetched(FetchPage(*api_, id)));
}

void Session::LogRetrievingPage(const PageObject& page) {
    if (log_) LogLine(log_, std::u16string(msg::kLogRetrievingPage) + page.name());
}

std::shared_ptr<LoadedPage> Session::Hold(PageObject& page, std::shared_ptr<ON::Page> document) {
    auto loaded = std::make_shared<LoadedPage>();
    loaded->id = page.id();
    loaded->document = std::move(document);
    loaded->textHost = MakeTextHost(*this, loaded);
    SyncLoadedPage(page, *loaded->document);
    page.RaiseLevel(Level::PageContents);
    pageIndex_.emplace(loaded->id, pageTable_.size());
    pageTable_.push_back(loaded);
    ++pagesLoaded_;
    return loaded;
}

std::shared_ptr<LoadedPage> Session::LoadedContent(std::u16string_view pageId) const {
    const auto found = pageIndex_.find(pageId);
    return found == pageIndex_.end() ? nullptr : pageTable_[found->second];
}

std::shared_ptr<LoadedPage> Session::PageHolding(const xml::ChildElement& element) const {
    const xml::ChildElement* root = &element;
    while (const xml::ChildElement* parent = ON::ParentElement(*root)) root = parent;
    for (const auto& page : pageTable_) {
        if (page->document.get() == root) return page;
    }
    return nullptr;
}

void Session::HierarchyChanged(HierarchyObject& object) {
    changed_.push_back(std::static_pointer_cast<HierarchyObject>(object.shared_from_this()));
}

std::u16string Session::Hyperlink(std::u16string_view hierarchyId, std::u16string_view objectId) {
    return api_->GetHyperlinkToObject(hierarchyId, objectId);
}

}  // namespace qm::onenote
