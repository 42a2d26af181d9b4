// The seam to OneNote: its application interface as the add-in uses it, with hierarchy and page
// XML (OneNote's 2010 schema) as UTF-16 strings in and out. The Windows implementation calls
// OneNote itself; NotebookFolder (notebook_folder.h) behaves as OneNote does over a folder of
// XML files, for the command-line tool and the tests.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "xml/xml_strings.h"

namespace qm::onenote {

// How much of the hierarchy GetHierarchy returns below its start node (OneNote's numbers).
enum class HierarchyScope : std::int32_t {
    Self = 0,       // the node alone
    Children = 1,   // the node and its direct children
    Notebooks = 2,  // down to notebooks
    Sections = 3,   // down to section groups and sections
    Pages = 4,      // down to pages
};

// OneNote's failure codes (HRESULTs) and their fixed texts, in one table (onenote_api.cpp).
namespace hr {
inline constexpr std::uint32_t kXmlNotWellFormed = 0x80042000;
inline constexpr std::uint32_t kXmlInvalid = 0x80042001;
inline constexpr std::uint32_t kSectionDoesNotExist = 0x80042004;
inline constexpr std::uint32_t kPageDoesNotExist = 0x80042005;
inline constexpr std::uint32_t kPageCouldNotBeOpened = 0x8004200A;
inline constexpr std::uint32_t kSectionReadOnly = 0x8004200B;
inline constexpr std::uint32_t kPageObjectDoesNotExist = 0x8004200E;
inline constexpr std::uint32_t kLastModifiedDateMismatch = 0x80042010;
inline constexpr std::uint32_t kObjectDoesNotExist = 0x80042014;
inline constexpr std::uint32_t kSectionEncryptedAndLocked = 0x8004201B;
inline constexpr std::uint32_t kEditInRecycleBin = 0x8004202E;
}  // namespace hr

struct ErrorText {
    std::uint32_t code;
    std::u16string_view text;
};

// The text OneNote gives for a code, or nothing for a code that is not one of OneNote's.
std::optional<std::u16string_view> OneNoteErrorText(std::uint32_t code);

// A failed call: OneNote's code and its text.
class OneNoteError : public std::exception {
public:
    // The text comes from the table; a code without one gets "OneNote error 0x........".
    explicit OneNoteError(std::uint32_t code);
    OneNoteError(std::uint32_t code, std::u16string text);

    std::uint32_t code() const noexcept { return code_; }
    const std::u16string& text() const noexcept { return text_; }
    const char* what() const noexcept override { return utf8_.c_str(); }

private:
    std::uint32_t code_;
    std::u16string text_;
    std::string utf8_;
};

// The calls, named and ordered as OneNote names them. Every failure raises OneNoteError.
class OneNoteApi {
public:
    virtual ~OneNoteApi() = default;

    // The hierarchy below a node ("" for the root, all open notebooks), cut to the scope.
    virtual std::u16string GetHierarchy(std::u16string_view startNodeId, HierarchyScope scope) = 0;
    // Applies the attributes of the nodes in the document (renames, colours, unread marks ...).
    virtual void UpdateHierarchy(std::u16string_view changesXml) = 0;
    // The ID of the section group, section or notebook that holds a node; fails for a notebook.
    virtual std::u16string GetHierarchyParent(std::u16string_view objectId) = 0;
    virtual std::u16string GetPageContent(std::u16string_view pageId) = 0;
    // Replaces a page's content; with an expected time, only when the page was last changed then.
    virtual void UpdatePageContent(std::u16string_view pageXml,
                                   std::optional<xml::SystemTime> expectedLastModified = std::nullopt) = 0;
    // A link to a node, or to an object on a page when pageContentObjectId is not empty.
    virtual std::u16string GetHyperlinkToObject(std::u16string_view hierarchyId,
                                                std::u16string_view pageContentObjectId) = 0;
    // A new, empty page at the end of a section; its ID.
    virtual std::u16string CreateNewPage(std::u16string_view sectionId) = 0;
};

}  // namespace qm::onenote
