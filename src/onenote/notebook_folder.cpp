#include "onenote/notebook_folder.h"

#include <chrono>
#include <random>

#include "core/format.h"
#include "core/text.h"
#include "onenote/given_page.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder_detail.h"
#include "onenote/on_document.h"
#include "onenote/plain_text.h"
#include "xml/file_io.h"

namespace qm::onenote {

namespace fs = std::filesystem;
using detail::Kind;

struct NotebookFolder::Node {
    Kind kind;
    xml::ChildElement* element;
};

namespace {

[[noreturn]] void Fail(std::uint32_t code) { throw OneNoteError(code); }

// Reads a document handed in by a caller; failures are OneNote's.
template <class Read>
auto ReadGiven(Read read) {
    try {
        return read();
    } catch (const ON::DocumentError& e) {
        Fail(e.kind() == ON::DocumentError::Kind::NotWellFormed ? hr::kXmlNotWellFormed : hr::kXmlInvalid);
    }
}

std::u16string FileNameText(const fs::path& path) { return FormatMessage(msg::kFileName, {path.u16string()}); }

std::u16string NewPageId(std::u16string_view sectionId) {
    static std::mt19937_64 random(static_cast<std::uint64_t>(
        std::chrono::steady_clock::now().time_since_epoch().count()));
    std::u16string guid;
    if (sectionId.starts_with(u"{")) {
        const std::size_t close = sectionId.find(u'}');
        if (close != std::u16string_view::npos) guid = sectionId.substr(0, close + 1);
    }
    if (guid.empty()) guid = u"{00000000-0000-4000-8000-000000000000}";
    std::string digits = std::to_string(random() % 9000000000000000000ull + 1000000000000000000ull);
    return guid + u"{1}{E" + Ascii(digits) + u"}";
}

}  // namespace

xml::SystemTime UtcNow() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto days = floor<std::chrono::days>(now);
    const year_month_day date{days};
    const hh_mm_ss time{now - days};
    return xml::SystemTime{static_cast<std::uint16_t>(static_cast<int>(date.year())),
                           static_cast<std::uint16_t>(static_cast<unsigned>(date.month())),
                           0,
                           static_cast<std::uint16_t>(static_cast<unsigned>(date.day())),
                           static_cast<std::uint16_t>(time.hours().count()),
                           static_cast<std::uint16_t>(time.minutes().count()),
                           static_cast<std::uint16_t>(time.seconds().count()),
                           0};
}

FolderError::FolderError(std::u16string message) : message_(std::move(message)), utf8_(ToUtf8(message_)) {}

int NotebookFolder::CallCounts::Total() const {
    return getHierarchy + updateHierarchy + getHierarchyParent + getPageContent + updatePageContent +
           getHyperlinkToObject + createNewPage;
}

NotebookFolder::NotebookFolder(fs::path folder, Clock clock) : folder_(std::move(folder)), clock_(std::move(clock)) {
    const fs::path file = folder_ / "hierarchy.xml";
    std::error_code ec;
    if (!fs::is_regular_file(file, ec)) {
        throw FolderError(FormatMessage(msg::kFolderNoHierarchy, {folder_.u16string()}));
    }
    try {
        root_ = ON::ReadNotebooks(io::DecodeXmlBytes(io::ReadFileBytes(file)), FileNameText(file));
    } catch (const ON::DocumentError& e) {
        throw FolderError(e.message());
    } catch (const io::FileError& e) {
        throw FolderError(FormatMessage(msg::kFolderFileError, {FromUtf8(e.what())}));
    }
    detail::ForEachNode(*root_, [&](xml::ChildElement& element, Kind kind) {
        const ON::String* id = detail::IdOf(element);
        if (id == nullptr || !*id) return;
        if (kind == Kind::Page && PageFileName(**id).empty()) {
            throw FolderError(FormatMessage(msg::kFolderIdTooLong, {FileNameText(file), **id}));
        }
        if (!nodes_.emplace(**id, std::make_unique<Node>(Node{kind, &element})).second) {
            throw FolderError(FormatMessage(msg::kFolderDuplicateId, {FileNameText(file), **id}));
        }
    });
}

NotebookFolder::~NotebookFolder() {
    try {
        Flush();
    } catch (...) {
        // Nothing can report it here; whoever needs to know calls Flush first.
    }
}

void NotebookFolder::Flush() {
    pageFiles_.Sync();
    if (!hierarchyChanged_) return;
    io::WriteFileAtomically(folder_ / "hierarchy.xml", ON::WriteDocumentFile(*root_));
    hierarchyChanged_ = false;
}

fs::path NotebookFolder::PageFileName(std::u16string_view id) { return detail::PageFileName(id); }

fs::path NotebookFolder::PagePath(std::u16string_view pageId) const {
    return folder_ / "pages" / PageFileName(pageId);
}

const NotebookFolder::Node& NotebookFolder::Find(std::u16string_view id, std::uint32_t missing) const {
    const auto found = nodes_.find(std::u16string(id));
    if (found == nodes_.end()) Fail(missing);
    return *found->second;
}

void NotebookFolder::WritePage(const std::u16string& id, const ON::Page& page) {
    WritePageFile(id, ON::WriteDocumentFile(page));
}

void NotebookFolder::WritePageFile(const std::u16string& id, std::string_view bytes) {
    fs::create_directories(folder_ / "pages");
    pageFiles_.Replace(PagePath(id), bytes);
}

void NotebookFolder::CheckWritable(const ON::Section* section, std::uint32_t whenLocked) const {
    if (section == nullptr) return;
    if (*section->readOnly) Fail(hr::kSectionReadOnly);
    if (*section->locked) Fail(whenLocked);
    if (*section->isInRecycleBin || *section->isDeletedPages) Fail(hr::kEditInRecycleBin);
}

std::u16string NotebookFolder::GetHierarchy(std::u16string_view startNodeId, HierarchyScope scope) {
    ++calls.getHierarchy;
    const auto index = static_cast<std::size_t>(scope);
    if (index < calls.getHierarchyByScope.size()) ++calls.getHierarchyByScope[index];
    const xml::ChildElement& start = startNodeId.empty()
                                         ? static_cast<const xml::ChildElement&>(*root_)
                                         : *Find(startNodeId, hr::kObjectDoesNotExist).element;
    return detail::WriteHierarchyCut(start, scope);
}

std::u16string NotebookFolder::GetHierarchyParent(std::u16string_view objectId) {
    ++calls.getHierarchyParent;
    const Node& node = Find(objectId, hr::kObjectDoesNotExist);
    if (node.kind == Kind::Notebook) Fail(hr::kObjectDoesNotExist);
    const xml::ChildElement* parent = ON::ParentElement(*node.element);
    const ON::String* id = parent != nullptr ? detail::IdOf(*parent) : nullptr;
    if (id == nullptr || !*id) Fail(hr::kObjectDoesNotExist);
    return **id;
}

std::u16string NotebookFolder::GetPageContent(std::u16string_view pageId) {
    ++calls.getPageContent;
    const Node& node = Find(pageId, hr::kPageDoesNotExist);
    if (node.kind != Kind::Page) Fail(hr::kPageDoesNotExist);
    const auto& page = static_cast<const ON::Page&>(*node.element);
    if (const auto* section = ON::AncestorOf<ON::Section>(page); section != nullptr && *section->locked) {
        Fail(hr::kSectionEncryptedAndLocked);
    }
    const fs::path path = PagePath(pageId);
    std::error_code ec;
    if (!fs::exists(path, ec)) return detail::EmptyPageDocument(page);
    return io::DecodeXmlBytes(io::ReadFileBytes(path));
}

ON::Page& NotebookFolder::PageToReplace(const std::u16string& id, std::optional<xml::SystemTime> expectedLastModified) {
    const Node& node = Find(id, hr::kPageDoesNotExist);
    if (node.kind != Kind::Page) Fail(hr::kPageDoesNotExist);
    auto& stored = static_cast<ON::Page&>(*node.element);
    CheckWritable(ON::AncestorOf<ON::Section>(stored), hr::kSectionEncryptedAndLocked);
    if (*stored.isInRecycleBin) Fail(hr::kEditInRecycleBin);
    if (expectedLastModified && (!stored.lastModifiedTime || stored.lastModifiedTime->time != *expectedLastModified)) {
        Fail(hr::kLastModifiedDateMismatch);
    }
    return stored;
}

void NotebookFolder::UpdatePageContent(std::u16string_view pageXml, std::optional<xml::SystemTime> expectedLastModified) {
    ++calls.updatePageContent;
    // A page as a run sends it is stored as given; any other is bound and written anew.
    if (const std::optional<detail::GivenPage> given = detail::ReadGivenPage(pageXml)) {
        ON::Page& stored = PageToReplace(given->id, expectedLastModified);
        const ON::DateTime now = ON::DateTime::Of(clock_());
        const ON::String name = given->titleText ? given->titleText : given->name ? given->name : stored.name;
        WritePageFile(given->id, detail::PageFileBytes(*given, name, now));
        SetEntry(stored, name, now, given->dateTime, given->pageLevel);
        return;
    }
    const std::shared_ptr<ON::Page> page = ReadGiven([&] { return ON::ReadPage(pageXml, u"the page"); });
    if (!page->ID || page->ID->empty()) Fail(hr::kXmlInvalid);
    const std::u16string id = *page->ID;
    ON::Page& stored = PageToReplace(id, expectedLastModified);

    page->lastModifiedTime = ON::DateTime::Of(clock_());
    if (page->title) {
        page->name = TitleText(*page);
    } else if (!page->name) {
        page->name = stored.name;
    }
    WritePage(id, *page);
    SetEntry(stored, page->name, *page->lastModifiedTime, page->dateTime, page->pageLevel);
}

void NotebookFolder::SetEntry(ON::Page& stored, const ON::String& name, const ON::DateTime& lastModified,
                              const ON::OptDateTime& dateTime, const ON::OptInt& pageLevel) {
    stored.name = name;
    stored.lastModifiedTime = lastModified;
    if (dateTime) stored.dateTime = dateTime;
    if (pageLevel) stored.pageLevel = pageLevel;
    MarkHierarchyChanged();
}

void NotebookFolder::UpdateHierarchy(std::u16string_view changesXml) {
    ++calls.updateHierarchy;
    const ON::HierarchyDocument given = ReadGiven([&] { return ON::ReadHierarchy(changesXml, u"the changes"); });

    // Everything is checked before anything changes.
    std::vector<std::pair<const xml::ChildElement*, const Node*>> changes;
    detail::ForEachNode(ON::RootOf(given), [&](xml::ChildElement& element, Kind kind) {
        const ON::String* id = detail::IdOf(element);
        if (kind == Kind::Notebooks || id == nullptr || !*id) return;
        const Node& node = Find(**id, hr::kObjectDoesNotExist);
        if (node.kind != kind) Fail(hr::kObjectDoesNotExist);
        const ON::Section* section = kind == Kind::Section ? static_cast<const ON::Section*>(node.element)
                                                           : ON::AncestorOf<ON::Section>(*node.element);
        if (section != nullptr && *section->readOnly) Fail(hr::kSectionReadOnly);
        changes.emplace_back(&element, &node);
    });
    std::vector<std::pair<std::u16string, std::shared_ptr<ON::Page>>> pageFiles;
    for (const auto& [element, node] : changes) {
        if (node->kind != Kind::Page) continue;
        const auto& id = *static_cast<const ON::Page*>(node->element)->ID;
        const fs::path path = PagePath(id);
        std::error_code ec;
        if (!fs::exists(path, ec)) continue;
        try {
            pageFiles.emplace_back(id, ON::ReadPage(io::DecodeXmlBytes(io::ReadFileBytes(path)), FileNameText(path)));
        } catch (const ON::DocumentError&) {
            Fail(hr::kPageCouldNotBeOpened);
        }
    }

    const xml::SystemTime now = clock_();
    for (const auto& [element, node] : changes) detail::ApplyChanges(*element, *node->element, now);
    for (const auto& [id, page] : pageFiles) {
        detail::ApplyChanges(static_cast<const ON::Page&>(*Find(id, hr::kPageDoesNotExist).element), *page, now);
        WritePage(id, *page);
    }
    MarkHierarchyChanged();
}

std::u16string NotebookFolder::GetHyperlinkToObject(std::u16string_view hierarchyId,
                                                    std::u16string_view pageContentObjectId) {
    ++calls.getHyperlinkToObject;
    const Node& node = Find(hierarchyId, hr::kObjectDoesNotExist);
    if (!pageContentObjectId.empty()) {
        if (node.kind != Kind::Page) Fail(hr::kPageObjectDoesNotExist);
        const fs::path path = PagePath(hierarchyId);
        std::error_code ec;
        const std::u16string content = fs::exists(path, ec) ? io::DecodeXmlBytes(io::ReadFileBytes(path)) : u"";
        if (content.find(u"objectID=\"" + std::u16string(pageContentObjectId) + u"\"") == std::u16string::npos) {
            Fail(hr::kPageObjectDoesNotExist);
        }
    }
    return detail::Hyperlink(*node.element, pageContentObjectId);
}

std::u16string NotebookFolder::CreateNewPage(std::u16string_view sectionId) {
    ++calls.createNewPage;
    const Node& node = Find(sectionId, hr::kSectionDoesNotExist);
    if (node.kind != Kind::Section) Fail(hr::kSectionDoesNotExist);
    auto& section = static_cast<ON::Section&>(*node.element);
    CheckWritable(&section, hr::kSectionEncryptedAndLocked);

    std::u16string id;
    do {
        id = NewPageId(sectionId);
    } while (nodes_.contains(id));
    const ON::DateTime now = ON::DateTime::Of(clock_());
    auto entry = std::make_shared<ON::Page>();
    entry->ID = id;
    entry->name = u"";
    entry->dateTime = now;
    entry->lastModifiedTime = now;
    entry->pageLevel = ON::Int::Of(1);
    WritePage(id, *detail::NewPageContent(*entry));
    ON::Page& added = section.pages.Add(entry);
    nodes_.emplace(id, std::make_unique<Node>(Node{Kind::Page, &added}));
    MarkHierarchyChanged();
    return id;
}

}  // namespace qm::onenote
