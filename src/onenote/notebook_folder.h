// A notebook folder: OneNote's notebooks kept as XML files, served through the OneNote seam as
// OneNote serves them. The command-line tool runs macros against one; the tests use one to see
// what a run asked of OneNote.
//
// Layout:
//   hierarchy.xml         a one:Notebooks document down to the pages, every node with its ID;
//                         isCurrentlyViewed marks the current notebook, section and page
//   pages/<name>.xml      the content of each page (a one:Page document), named after its ID
//
// Page file names: an ID of OneNote's form, brace groups of upper-case letters, digits and
// hyphens ("{3D01...-7B85}{1}{E1946...}"), is named by its groups joined with underscores
// ("3D01...-7B85_1_E1946....xml"). Any other ID is named "~" followed by four hexadecimal digits
// per UTF-16 code unit. Both forms are safe on every file system (no braces, no case clashes)
// and never name two IDs alike. A page without a file is served as an empty page.
//
// Files are read in UTF-8 or UTF-16, with or without a byte order mark, and written as UTF-8
// with an XML declaration and two-space indentation; every write replaces its file atomically.
//
// Hierarchy changes (a page's new name and time, renames, new pages) take effect at once for every
// call on the object but reach hierarchy.xml only at Flush() or when the object goes, so that
// saving many pages rewrites the hierarchy once, not once per page. Page files are replaced at
// once but flushed to the disk together at Flush(), before the hierarchy (io::FileBatch): a
// process that dies before the flush loses only those hierarchy attributes; a power cut before it
// may lose the pages written since the last flush too.
//
// What it does as OneNote does: scopes cut the hierarchy at their depth; IDs that do not exist,
// read-only and locked sections and pages in the recycle bin fail with OneNote's codes and texts;
// UpdatePageContent replaces the page and sets its name (from the title) and last-modified time
// in the hierarchy (a page sent in the form of page files, as a run sends it, is checked for
// well-formedness and stored as given: given_page.h); UpdateHierarchy applies the attributes a
// macro may change (names, colours, unread marks, page dates and levels) but does not move or
// delete nodes.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>

#include "onenote/on_schema.h"
#include "onenote/onenote_api.h"
#include "xml/file_batch.h"

namespace qm::onenote {

// The current time in UTC, to the second, as OneNote stamps its documents.
xml::SystemTime UtcNow();

// A folder that cannot serve as a notebook folder; the message names the file.
class FolderError : public std::exception {
public:
    explicit FolderError(std::u16string message);
    const std::u16string& message() const noexcept { return message_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::u16string message_;
    std::string utf8_;
};

class NotebookFolder final : public OneNoteApi {
public:
    using Clock = std::function<xml::SystemTime()>;

    // How often each call was made, so that tests can see what a query fetched.
    struct CallCounts {
        int getHierarchy = 0;
        std::array<int, 5> getHierarchyByScope{};  // indexed by HierarchyScope
        int updateHierarchy = 0;
        int getHierarchyParent = 0;
        int getPageContent = 0;
        int updatePageContent = 0;
        int getHyperlinkToObject = 0;
        int createNewPage = 0;

        int Total() const;
    };

    // Reads hierarchy.xml. Throws FolderError when the folder has none or it cannot be read.
    explicit NotebookFolder(std::filesystem::path folder, Clock clock = UtcNow);
    ~NotebookFolder() override;

    CallCounts calls;

    std::u16string GetHierarchy(std::u16string_view startNodeId, HierarchyScope scope) override;
    void UpdateHierarchy(std::u16string_view changesXml) override;
    std::u16string GetHierarchyParent(std::u16string_view objectId) override;
    std::u16string GetPageContent(std::u16string_view pageId) override;
    void UpdatePageContent(std::u16string_view pageXml,
                           std::optional<xml::SystemTime> expectedLastModified = std::nullopt) override;
    std::u16string GetHyperlinkToObject(std::u16string_view hierarchyId,
                                        std::u16string_view pageContentObjectId) override;
    std::u16string CreateNewPage(std::u16string_view sectionId) override;

    // Flushes the page files written since the last flush to the disk, then writes hierarchy.xml
    // when anything in it changed. Throws io::FileError.
    void Flush();

    const std::filesystem::path& folder() const noexcept { return folder_; }
    std::filesystem::path PagePath(std::u16string_view pageId) const;

    // The file name (without folder) of a page's content; empty when the ID is too long for one.
    static std::filesystem::path PageFileName(std::u16string_view pageId);

private:
    struct Node;
    const Node& Find(std::u16string_view id, std::uint32_t missing) const;
    void MarkHierarchyChanged() { hierarchyChanged_ = true; }
    void WritePage(const std::u16string& id, const ON::Page& page);
    void WritePageFile(const std::u16string& id, std::string_view bytes);
    // The stored entry of a page UpdatePageContent may replace; fails as OneNote does otherwise.
    ON::Page& PageToReplace(const std::u16string& id, std::optional<xml::SystemTime> expectedLastModified);
    // A replaced page's hierarchy entry: its name and time, and its date and level when given.
    void SetEntry(ON::Page& stored, const ON::String& name, const ON::DateTime& lastModified,
                  const ON::OptDateTime& dateTime, const ON::OptInt& pageLevel);
    void CheckWritable(const ON::Section* section, std::uint32_t whenLocked) const;

    std::filesystem::path folder_;
    Clock clock_;
    std::shared_ptr<ON::Notebooks> root_;
    std::unordered_map<std::u16string, std::unique_ptr<Node>> nodes_;
    bool hierarchyChanged_ = false;
    io::FileBatch pageFiles_;
};

}  // namespace qm::onenote
