// The texts of the OneNote layer and of the notebook commands, in one list (OneNote's own error
// texts are in the table of onenote_api.cpp). Templates carry numbered placeholders filled by
// FormatMessage.
#pragma once

#include <string_view>

#include "runtime/messages.h"

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
inline constexpr std::u16string_view kUnknownOneNoteError = u"OneNote error 0x[1]";
inline constexpr std::u16string_view kFileName = u"\"[1]\"";

// The notebook folder.
inline constexpr std::u16string_view kFolderNoHierarchy =
    u"\"[1]\" is not a notebook folder: it has no hierarchy.xml";
inline constexpr std::u16string_view kFolderDuplicateId = u"Cannot read [1]: the ID \"[2]\" is used twice";
inline constexpr std::u16string_view kFolderIdTooLong =
    u"Cannot read [1]: the ID \"[2]\" is too long to name a page file";
inline constexpr std::u16string_view kFolderFileError = u"[1]";
inline constexpr std::u16string_view kFileNotWritten = u"Cannot write \"[1]\"";

// The bundled sample notebook and its working copy.
inline constexpr std::u16string_view kSampleNotFound =
    u"Cannot find the sample notebook that comes with Quillmark (looked in: [1])";

// Listings of a notebook folder (quillmark notebook show). Lines are indented by two spaces per
// level; [1] is a name or text, [2] an ID.
inline constexpr std::u16string_view kListNotebook = u"Notebook: [1]  [2]";
inline constexpr std::u16string_view kListSectionGroup = u"Section group: [1]  [2]";
inline constexpr std::u16string_view kListSection = u"Section: [1]  [2]";
inline constexpr std::u16string_view kListPage = u"Page: [1]  [2]";
inline constexpr std::u16string_view kListUnfiledNotes = u"Unfiled notes";
inline constexpr std::u16string_view kListOpenSections = u"Open sections";
inline constexpr std::u16string_view kListCurrent = u" (current)";
inline constexpr std::u16string_view kListReadOnly = u" (read-only)";
inline constexpr std::u16string_view kListLocked = u" (locked)";
inline constexpr std::u16string_view kListUnread = u" (unread)";
inline constexpr std::u16string_view kListUntitled = u"(untitled)";
inline constexpr std::u16string_view kListTitle = u"Title: [1]";
inline constexpr std::u16string_view kListOutline = u"Outline";
inline constexpr std::u16string_view kListTable = u"Table: [1] columns, [2] rows";
inline constexpr std::u16string_view kListRow = u"| [1] |";
inline constexpr std::u16string_view kListCellSeparator = u" | ";
inline constexpr std::u16string_view kListImage = u"Image: [1]";
inline constexpr std::u16string_view kListEmbeddedFile = u"Embedded file: [1]";
inline constexpr std::u16string_view kListMediaFile = u"Recording: [1]";
inline constexpr std::u16string_view kListInk = u"Ink";
inline constexpr std::u16string_view kListInkWord = u"(ink: [1])";
inline constexpr std::u16string_view kListHtmlBlock = u"HTML block";
inline constexpr std::u16string_view kListKept = u"Kept as read: [1]";
inline constexpr std::u16string_view kListBullet = u"\x2022 ";
inline constexpr std::u16string_view kListTag = u"[[1]] ";
inline constexpr std::u16string_view kListTagDone = u"[[1], done] ";

// quillmark notebook ...
inline constexpr std::u16string_view kResetDone = u"The working notebook in \"[1]\" is the sample notebook again.";
inline constexpr std::u16string_view kGenerated = u"Wrote [1] notebooks, [2] sections and [3] pages to \"[4]\".";
inline constexpr std::u16string_view kGenerateFolderNotEmpty =
    u"\"[1]\" is not empty: choose a new or empty folder";
inline constexpr std::u16string_view kGenerateTooLarge = u"That is more than [1] pages: ask for fewer";
inline constexpr std::u16string_view kUnknownObject = u"No notebook, section group, section or page has the ID \"[1]\"";

// The macro object model: properties.
// Every object type words an unknown or read-only property alike, the dialog box too: one text
// each, kept with the runtime's ([1] the property, [2] the type).
using qm::msg::kReadOnlyProperty;
using qm::msg::kUnknownProperty;
// The type is the paragraph's element name, "OE", whatever type the object has.
inline constexpr std::u16string_view kWriteOnlyProperty =
    u"Attempting to read write-only property '[1]' on object of type 'OE'";
// A value the property cannot take: [1] the property, [2] the type, [3] the value, [4] the kind.
inline constexpr std::u16string_view kInvalidPropertyValue =
    u"Cannot set property '[1]' on object of type '[2]' to [3]: expected a [4]";
inline constexpr std::u16string_view kInvalidOrientation =
    u"Cannot set property 'orientation' on object of type 'Page' to '[1]': expected portrait or landscape";
// The first-tag properties of an object without tags, the list properties of a paragraph that is
// not part of such a list: [1] the property, [2] the type.
inline constexpr std::u16string_view kNoTagToModify = u"Cannot set property '[1]' on object of type '[2]': it has no tag";
inline constexpr std::u16string_view kNotBulleted =
    u"Cannot set property '[1]' on object of type 'Paragraph': it is not part of a bulleted list";
inline constexpr std::u16string_view kNotNumbered =
    u"Cannot set property '[1]' on object of type 'Paragraph': it is not part of a numbered list";
// [1] what the paragraph holds, as its contentType names it.
inline constexpr std::u16string_view kParagraphHoldsNoText =
    u"Cannot set property 'text' on object of type 'Paragraph': it holds [1], not text";
inline constexpr std::u16string_view kKindString = u"String";
inline constexpr std::u16string_view kKindBool = u"Bool";
inline constexpr std::u16string_view kKindInteger = u"Integer";
inline constexpr std::u16string_view kKindNumber = u"Numeric";
inline constexpr std::u16string_view kKindDateTime = u"DateTime";
inline constexpr std::u16string_view kKindArray = u"Array";

// The macro object model: queries and navigation; [1] the function.
inline constexpr std::u16string_view kExpectedObjectFirst = u"Expected an object at first parameter of [1]";
inline constexpr std::u16string_view kExpectedObjectSecond = u"Expected an object at second parameter of [1]";
// An object of another layer (a dialog box) where a OneNote object is needed.
inline constexpr std::u16string_view kExpectedOneNoteObject = u"Expected a OneNote object at [2] parameter of [1]";
inline constexpr std::u16string_view kFirst = u"first";
inline constexpr std::u16string_view kSecond = u"second";
inline constexpr std::u16string_view kUnknownObjectType = u"Unknown object type '[1]' at first parameter of [2]";

// Macro log lines of the object model.
inline constexpr std::u16string_view kLogModifyingProperty = u"\tModifying property(";
inline constexpr std::u16string_view kLogModifyingPropertyValue = u") = ";
inline constexpr std::u16string_view kLogNewValue = u"\tNew value: ";
inline constexpr std::u16string_view kLogQuerying = u"\tQuerying each ";
inline constexpr std::u16string_view kLogIn = u" in ";
inline constexpr std::u16string_view kLogRetrieving = u"\tRetrieving ";
inline constexpr std::u16string_view kLogUnder = u" under ";
inline constexpr std::u16string_view kLogRetrievingPage = u"\tRetrieving contents for page ";
inline constexpr std::u16string_view kLevelNotebooks = u"list of notebooks";
inline constexpr std::u16string_view kLevelSections = u"list of sections";
inline constexpr std::u16string_view kLevelPages = u"list of pages";
inline constexpr std::u16string_view kLevelPageContents = u"page contents";
inline constexpr std::u16string_view kLogLookingFor = u"\tLooking for ";
inline constexpr std::u16string_view kLogAParent = u"a parent";
inline constexpr std::u16string_view kLogAnAncestor = u"an ancestor";
inline constexpr std::u16string_view kLogOfType = u" of type ";
inline constexpr std::u16string_view kLogOfAn = u" of an ";
inline constexpr std::u16string_view kLogAlreadyAtRoot = u"\t\tAlready at notebook root, can't go further";
inline constexpr std::u16string_view kLogCurrentObject = u"\t\tCurrent object is of type: ";
inline constexpr std::u16string_view kLogLookingForItsParent = u", looking for its parent";
inline constexpr std::u16string_view kLogFound = u"\t\tFound ";
inline constexpr std::u16string_view kLogCannotFind = u"\t\tCannot find ";

// Formatted text: Text objects and QueryText (the search's line is kLogFound, the count, then
// this, then the value: no blank before "pieces", no closing quote).
inline constexpr std::u16string_view kLogPiecesOfText = u"pieces of text with value '";
// The value of a font size that is no positive number, in kInvalidPropertyValue's [4].
inline constexpr std::u16string_view kKindFontSize = u"positive number";

// Inserting objects (InsertObject).
inline constexpr std::u16string_view kOnlyPageUnderSection = u"Only objects of type Page can be inserted under a Section";
inline constexpr std::u16string_view kOnlyOutlineUnderPage = u"Only objects of type Outline can be inserted under a Page";
inline constexpr std::u16string_view kOnlyParagraphOrTable =
    u"Only objects of type Paragraph or Table can be inserted under an Outline or a Cell";
inline constexpr std::u16string_view kOnlyTextOrTag = u"Only objects of type Text or Tag can be inserted under a Paragraph";
inline constexpr std::u16string_view kOnlyRow = u"Only objects of type Row can be inserted under a Table";
inline constexpr std::u16string_view kOnlyCell = u"Only objects of type Cell can be inserted under a Row";
inline constexpr std::u16string_view kOnlyTagUnderImage = u"Only objects of type Tag can be inserted under an Image";
inline constexpr std::u16string_view kOnlyTagUnderFile = u"Only objects of type Tag can be inserted under an EmbeddedFile";
inline constexpr std::u16string_view kCannotInsertUnder = u"Cannot insert objects under [1]";
inline constexpr std::u16string_view kTextPosition =
    u"Position must be 0 or -1 when inserting Text objects under a Paragraph";
inline constexpr std::u16string_view kTooManyTags = u"Too many tags are inserted on a single object";
inline constexpr std::u16string_view kImageTagInsideOutline =
    u"Cannot insert tags on an object of type Image inside an Outline. Insert the tag on the parent Paragraph instead.";
inline constexpr std::u16string_view kFileTagInsideOutline =
    u"Cannot insert tags on an object of type EmbeddedFile inside an Outline. Insert the tag on the parent Paragraph "
    u"instead.";
// Text goes only into a paragraph of text; [1] what the paragraph holds, as its contentType names it.
inline constexpr std::u16string_view kTextIntoNonText =
    u"Cannot insert objects of type Text under a Paragraph that holds [1]";
inline constexpr std::u16string_view kNewTagName = u"To Do";
inline constexpr std::u16string_view kLogInserting = u"\tInserting an object of type ";
inline constexpr std::u16string_view kLogAt = u" at ";
inline constexpr std::u16string_view kLogAtIndex = u"index [";
inline constexpr std::u16string_view kLogAtIndexEnd = u"]";
inline constexpr std::u16string_view kLogAtTheEnd = u"at the end";

// Sorting objects (SortObjects).
inline constexpr std::u16string_view kSortExpectsArray = u"Expected an array at first parameter of SortObjects";
inline constexpr std::u16string_view kSortExpectsObjects = u"Expected object in the array at first parameter of SortObjects";
inline constexpr std::u16string_view kLogSortKeys = u"Sort Keys for ";
inline constexpr std::u16string_view kLogSortKeysObjects = u" objects:";

}  // namespace qm::onenote::msg
