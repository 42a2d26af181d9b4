#include "onenote/notebook_folder_detail.h"

#include "core/text.h"
#include "onenote/on_document.h"

namespace qm::onenote::detail {

namespace {

constexpr std::size_t kMaxFileNameLength = 200;
constexpr std::u16string_view kLinkScheme = u"onenote:";

void EachSectionChoice(const xml::ChildList<ON::SectionChoice>& children,
                       const std::function<void(xml::ChildElement&, Kind)>& visit) {
    for (const auto& choice : children) {
        if (choice->section) visit(*choice->section, Kind::Section);
        if (choice->sectionGroup) visit(*choice->sectionGroup, Kind::SectionGroup);
    }
}

}  // namespace

void ForEachChild(const xml::ChildElement& node, const std::function<void(xml::ChildElement&, Kind)>& visit) {
    switch (KindOf(node)) {
        case Kind::Notebooks: {
            const auto& root = static_cast<const ON::Notebooks&>(node);
            for (const auto& notebook : root.notebooks) visit(*notebook, Kind::Notebook);
            if (root.unfiledNotes) visit(*root.unfiledNotes, Kind::UnfiledNotes);
            if (root.openSections) visit(*root.openSections, Kind::OpenSections);
            break;
        }
        case Kind::Notebook: EachSectionChoice(static_cast<const ON::Notebook&>(node).children, visit); break;
        case Kind::SectionGroup: EachSectionChoice(static_cast<const ON::SectionGroup&>(node).children, visit); break;
        case Kind::UnfiledNotes: EachSectionChoice(static_cast<const ON::UnfiledNotes&>(node).children, visit); break;
        case Kind::OpenSections: EachSectionChoice(static_cast<const ON::OpenSections&>(node).children, visit); break;
        case Kind::Section:
            for (const auto& page : static_cast<const ON::Section&>(node).pages) visit(*page, Kind::Page);
            break;
        default: break;
    }
}

namespace {

int Level(Kind kind) {
    switch (kind) {
        case Kind::Notebook: return 2;
        case Kind::Page: return 4;
        default: return 3;
    }
}

bool Includes(Kind kind, int depth, HierarchyScope scope) {
    switch (scope) {
        case HierarchyScope::Self: return false;
        case HierarchyScope::Children: return depth == 1;
        default: return Level(kind) <= static_cast<int>(scope);
    }
}

void WriteCut(const xml::ChildElement& node, int depth, HierarchyScope scope, xml::XmlWriter& writer) {
    ON::WriteStartWithAttributes(node, writer);
    ForEachChild(node, [&](xml::ChildElement& child, Kind kind) {
        if (Includes(kind, depth + 1, scope)) WriteCut(child, depth + 1, scope, writer);
    });
    writer.EndElement();
}

bool IsIdGroupChar(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'-'; }

// The groups of an ID of OneNote's form joined by underscores; empty for any other ID.
std::u16string GroupsName(std::u16string_view id) {
    if (id.size() < 3 || id.front() != u'{' || id.back() != u'}') return {};
    std::u16string name;
    for (std::size_t i = 1; i + 1 < id.size(); ++i) {
        const char16_t c = id[i];
        if (c == u'}') {
            if (id[i + 1] != u'{' || id[i - 1] == u'{') return {};
            name += u'_';
            ++i;
        } else if (IsIdGroupChar(c)) {
            name += c;
        } else {
            return {};
        }
    }
    return id[id.size() - 2] == u'{' ? std::u16string() : name;
}

// Applies one attribute; true when the stored value changed.
template <class V>
bool Set(std::optional<V>& stored, const std::optional<V>& given) {
    if (!given || stored == given) return false;
    stored = given;
    return true;
}

template <class V>
bool Set(xml::Defaulted<V>& stored, const xml::Defaulted<V>& given) {
    if (stored.value == given.value) return false;
    stored.value = given.value;
    return true;
}

}  // namespace

Kind KindOf(const xml::ChildElement& element) {
    if (dynamic_cast<const ON::Page*>(&element) != nullptr) return Kind::Page;
    if (dynamic_cast<const ON::Section*>(&element) != nullptr) return Kind::Section;
    if (dynamic_cast<const ON::SectionGroup*>(&element) != nullptr) return Kind::SectionGroup;
    if (dynamic_cast<const ON::Notebook*>(&element) != nullptr) return Kind::Notebook;
    if (dynamic_cast<const ON::Notebooks*>(&element) != nullptr) return Kind::Notebooks;
    if (dynamic_cast<const ON::UnfiledNotes*>(&element) != nullptr) return Kind::UnfiledNotes;
    if (dynamic_cast<const ON::OpenSections*>(&element) != nullptr) return Kind::OpenSections;
    return Kind::Other;
}

void ForEachNode(xml::ChildElement& root, const std::function<void(xml::ChildElement&, Kind)>& visit) {
    visit(root, KindOf(root));
    ForEachChild(root, [&](xml::ChildElement& child, Kind) { ForEachNode(child, visit); });
}

const ON::String* IdOf(const xml::ChildElement& element) {
    if (const auto* h = dynamic_cast<const ON::HierarchyObjectAttributes*>(&element)) return &h->ID;
    if (const auto* u = dynamic_cast<const ON::UnfiledNotes*>(&element)) return &u->ID;
    if (const auto* o = dynamic_cast<const ON::OpenSections*>(&element)) return &o->ID;
    return nullptr;
}

std::filesystem::path PageFileName(std::u16string_view pageId) {
    std::u16string name = GroupsName(pageId);
    if (name.empty()) {
        static constexpr char16_t kHex[] = u"0123456789ABCDEF";
        name = u"~";
        for (char16_t c : pageId) {
            for (int shift = 12; shift >= 0; shift -= 4) name += kHex[(c >> shift) & 0xF];
        }
    }
    if (name.size() > kMaxFileNameLength) return {};
    name += u".xml";
    return std::filesystem::path(ToUtf8(name));
}

std::u16string WriteHierarchyCut(const xml::ChildElement& start, HierarchyScope scope) {
    std::u16string out;
    xml::StringSink sink(out);
    xml::XmlWriter writer(sink, xml::WriterOptions{true, u"\n", xml::IllegalCharacters::Reference});
    writer.WriteDeclaration(u"");
    WriteCut(start, 0, scope, writer);
    writer.EndDocument();
    return out;
}

void ApplyChanges(const xml::ChildElement& given, xml::ChildElement& stored, const xml::SystemTime& now) {
    bool changed = false;
    const ON::OptDateTime* modified = nullptr;
    if (const auto* g = dynamic_cast<const ON::Notebook*>(&given)) {
        auto& s = static_cast<ON::Notebook&>(stored);
        changed = Set(s.name, g->name) | Set(s.nickname, g->nickname) | Set(s.color, g->color) |
                  Set(s.isUnread, g->isUnread);
        modified = &g->lastModifiedTime;
    } else if (const auto* g = dynamic_cast<const ON::SectionGroup*>(&given)) {
        auto& s = static_cast<ON::SectionGroup&>(stored);
        changed = Set(s.name, g->name) | Set(s.isUnread, g->isUnread);
        modified = &g->lastModifiedTime;
    } else if (const auto* g = dynamic_cast<const ON::Section*>(&given)) {
        auto& s = static_cast<ON::Section&>(stored);
        changed = Set(s.name, g->name) | Set(s.color, g->color) | Set(s.isUnread, g->isUnread);
        modified = &g->lastModifiedTime;
    } else if (const auto* g = dynamic_cast<const ON::Page*>(&given)) {
        auto& s = static_cast<ON::Page&>(stored);
        changed = Set(s.dateTime, g->dateTime) | Set(s.pageLevel, g->pageLevel) | Set(s.isCollapsed, g->isCollapsed) |
                  Set(s.isUnread, g->isUnread) | Set(s.selected, g->selected);
        modified = &g->lastModifiedTime;
    }
    auto* hierarchy = dynamic_cast<ON::HierarchyObjectAttributes*>(&stored);
    if (modified == nullptr || hierarchy == nullptr) return;
    if (*modified) {
        hierarchy->lastModifiedTime = *modified;
    } else if (changed) {
        hierarchy->lastModifiedTime = ON::DateTime::Of(now);
    }
}

std::u16string EmptyPageDocument(const ON::Page& entry) { return ON::WriteDocument(entry); }

std::shared_ptr<ON::Page> NewPageContent(const ON::Page& entry) {
    auto page = ON::ReadPage(ON::WriteDocument(entry), u"new page");
    auto t = ON::New<ON::T>();
    t->cdata = true;
    auto content = std::make_shared<ON::OEChoice>();
    content->t = t;
    t->owner = content.get();
    auto oe = ON::New<ON::OE>();
    oe->content.Add(content);
    auto title = ON::New<ON::Title>();
    title->oe = oe;
    oe->owner = title.get();
    page->title = title;
    title->owner = page.get();
    return page;
}

std::u16string Hyperlink(const xml::ChildElement& node, std::u16string_view objectId) {
    std::u16string link(kLinkScheme);
    const auto* page = dynamic_cast<const ON::Page*>(&node);
    const auto* files = page != nullptr ? ON::AncestorOf<ON::Section>(node)
                                        : dynamic_cast<const ON::FileObjectAttributes*>(&node);
    if (files != nullptr && files->path) link += *files->path;
    if (page == nullptr) return link;
    const auto* section = ON::AncestorOf<ON::Section>(node);
    link += u"#";
    link += page->name.value_or(u"");
    link += u"&section-id=";
    if (section != nullptr) link += section->ID.value_or(u"");
    link += u"&page-id=";
    link += page->ID.value_or(u"");
    if (!objectId.empty()) {
        link += u"&object-id=";
        link += objectId;
    }
    link += u"&end";
    return link;
}

}  // namespace qm::onenote::detail
