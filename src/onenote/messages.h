// The texts of the OneNote layer and of the notebook commands, in one list (OneNote's own error
// texts are in the table of onenote_api.cpp). Templates carry numbered placeholders filled by
// FormatMessage.
#pragma once

#include <string_view>

namespace qm::onenote::msg {

// Reading OneNote documents; [1] names the document (a file, or a page or object ID).
inline constexpr std::u16string_view kDocumentNotWellFormed = u"Cannot read [1]: [2]";
inline constexpr std::u16string_view kDocumentEmpty = u"Cannot read [1]: it holds no element";
inline constexpr std::u16string_view kDocumentWrongNamespace =
    u"Cannot read [1]: its root element \"[2]\" is not in the OneNote 2010 namespace (found \"[3]\")";
inline constexpr std::u16string_view kDocumentUnexpectedRoot = u"Cannot read [1]: expected [2], found \"[3]\"";
inline constexpr std::u16string_view kExpectedPage = u"a \"Page\" element";
inline constexpr std::u16string_view kExpectedNotebooks = u"a \"Notebooks\" element";
inline constexpr std::u16string_view kExpectedHierarchy =
    u"a \"Notebooks\", \"Notebook\", \"SectionGroup\", \"Section\" or \"Page\" element";
inline constexpr std::u16string_view kPageName = u"page [1]";
inline constexpr std::u16string_view kFileName = u"\"[1]\"";

// The notebook folder.
inline constexpr std::u16string_view kFolderNoHierarchy =
    u"\"[1]\" is not a notebook folder: it has no hierarchy.xml";
inline constexpr std::u16string_view kFolderDuplicateId = u"Cannot read [1]: the ID \"[2]\" is used twice";
inline constexpr std::u16string_view kFolderIdTooLong =
    u"Cannot read [1]: the ID \"[2]\" is too long to name a page file";
inline constexpr std::u16string_view kFolderFileError = u"[1]";

// The bundled sample notebook and its working copy.
inline constexpr std::u16string_view kSampleNotFound =
    u"Cannot find the sample notebook that comes with Quillmark (looked in: [1])";

// quillmark notebook ...
inline constexpr std::u16string_view kResetDone = u"The working notebook in \"[1]\" is the sample notebook again.";
inline constexpr std::u16string_view kGenerated = u"Wrote [1] notebooks, [2] sections and [3] pages to \"[4]\".";
inline constexpr std::u16string_view kGenerateFolderNotEmpty =
    u"\"[1]\" is not empty: choose a new or empty folder";
inline constexpr std::u16string_view kUnknownObject = u"No notebook, section group, section or page has the ID \"[1]\"";

}  // namespace qm::onenote::msg
