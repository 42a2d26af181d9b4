// Reading and writing object properties: values and defaults, the errors and their exact
// messages, conversions on write, the write log, and what a write marks for saving.
#include <gtest/gtest.h>

#include "core/text.h"
#include "onenote/on_document.h"
#include "onenote/onenote_test_util.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

class ObjectValuesTest : public SessionTest {
protected:
    ObjectRef Page(std::u16string_view name) { return Find(u"Page", name); }
    std::vector<ObjectRef> On(std::u16string_view type, std::u16string_view page) { return Query(type, Page(page)); }
    ObjectRef Paragraph(std::u16string_view text) { return Find(u"Paragraph", text); }
};

TEST_F(ObjectValuesTest, UnknownPropertiesAndQuietReads) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    EXPECT_EQ(ErrorOf([&] { Get(section, u"nope"); }),
              u"A property named 'nope' on object of type 'Section' does not exist.");
    EXPECT_TRUE(Get(section, u"nope", true).IsEmpty());
    EXPECT_TRUE(Get(Paragraph(u"Alpha"), u"Name", true).IsEmpty());  // names are case-sensitive
    // The notebook root answers with the error even when asked quietly.
    EXPECT_EQ(ErrorOf([&] { Get(Root(), u"nope", true); }),
              u"A property named 'nope' on object of type 'NotebookRoot' does not exist.");
    EXPECT_EQ(ErrorOf([&] { Set(section, u"nope", MacroValue(u"x")); }),
              u"A property named 'nope' on object of type 'Section' does not exist.");
}

TEST_F(ObjectValuesTest, ReadOnlyAndWriteOnlyMessages) {
    EXPECT_EQ(ErrorOf([&] { Set(Page(u"First"), u"name", MacroValue(u"x")); }),
              u"Attempting to write read-only property 'name' on object of type 'Page'");
    EXPECT_EQ(ErrorOf([&] { Set(Find(u"Notebook", u"Work"), u"sections", MacroValue(u"x")); }),
              u"Attempting to write read-only property 'sections' on object of type 'Notebook'");
    EXPECT_EQ(ErrorOf([&] { Set(Paragraph(u"Alpha"), u"type", MacroValue(u"x")); }),
              u"Attempting to write read-only property 'type' on object of type 'Paragraph'");
    // A paragraph's formatting is write-only; the message names the element, OE.
    EXPECT_EQ(ErrorOf([&] { Get(Paragraph(u"Alpha"), u"fontName"); }),
              u"Attempting to read write-only property 'fontName' on object of type 'OE'");
    EXPECT_EQ(ErrorOf([&] { Set(Paragraph(u"Alpha"), u"fontName", MacroValue(u"Consolas")); }), u"");
    EXPECT_EQ(session_->FinalizeModified(), 1u);
}

TEST_F(ObjectValuesTest, NameIsWritableOnSectionsAndSavedWithUpdateHierarchy) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    Set(section, u"name", MacroValue(u"Thoughts"));
    EXPECT_EQ(Get(section, u"name").string(), u"Thoughts");
    EXPECT_EQ(folder_->calls.updateHierarchy, 0);  // nothing goes out before the run ends
    EXPECT_EQ(session_->FinalizeModified(), 0u);    // a renamed section is not a modified page
    EXPECT_EQ(folder_->calls.updateHierarchy, 1);
    EXPECT_NE(folder_->GetHierarchy(Id(kIdeas), HierarchyScope::Self).find(u"name=\"Thoughts\""), std::u16string::npos);
}

TEST_F(ObjectValuesTest, PageWithoutSettingsReadsDefaults) {
    const ObjectRef page = Page(u"First");
    EXPECT_EQ(Get(page, u"orientation").string(), u"portrait");
    EXPECT_TRUE(Get(page, u"automaticSize").boolean());
    EXPECT_FALSE(Get(page, u"rtl").boolean());
    EXPECT_EQ(Get(page, u"color").string(), u"automatic");
    EXPECT_EQ(Get(page, u"width").decimal(), 612.0);
    EXPECT_EQ(Get(page, u"height").decimal(), 792.0);
    EXPECT_EQ(Get(page, u"marginTop").decimal(), 36.0);
    EXPECT_EQ(Get(page, u"marginLeft").decimal(), 72.0);
    EXPECT_FALSE(Get(page, u"ruleLinesVisible").boolean());
    EXPECT_EQ(Get(page, u"ruleLinesVerticalSpacing").decimal(), 23.76);
}

TEST_F(ObjectValuesTest, PageSettingsAreRead) {
    const ObjectRef page = Page(u"Second");
    EXPECT_EQ(Get(page, u"orientation").string(), u"landscape");
    EXPECT_FALSE(Get(page, u"automaticSize").boolean());
    EXPECT_TRUE(Get(page, u"rtl").boolean());
    EXPECT_EQ(Get(page, u"color").string(), u"#FFFFFF");
    EXPECT_EQ(Get(page, u"width").decimal(), 700.0);
    EXPECT_EQ(Get(page, u"marginRight").decimal(), 13.0);
    EXPECT_TRUE(Get(page, u"ruleLinesVisible").boolean());
    EXPECT_EQ(Get(page, u"ruleLinesHorizontalSpacing").decimal(), 20.0);
    EXPECT_EQ(Get(page, u"ruleLinesMarginColor").string(), u"#FF0000");
    EXPECT_EQ(Get(page, u"ruleLinesVerticalColor").string(), u"automatic");
    EXPECT_EQ(Get(page, u"pageLevel").integer(), 2);
    EXPECT_TRUE(Get(page, u"isUnread").boolean());
}

TEST_F(ObjectValuesTest, OrientationTakesOnlyPortraitOrLandscape) {
    const ObjectRef page = Page(u"First");
    EXPECT_EQ(ErrorOf([&] { Set(page, u"orientation", MacroValue(u"Landscape")); }),
              u"Cannot set property 'orientation' on object of type 'Page' to 'Landscape': expected portrait or "
              u"landscape");
    EXPECT_EQ(session_->FinalizeModified(), 0u);

    Set(page, u"orientation", MacroValue(u"landscape"));
    EXPECT_EQ(Get(page, u"orientation").string(), u"landscape");
    EXPECT_FALSE(Get(page, u"automaticSize").boolean());
    EXPECT_EQ(Get(page, u"width").decimal(), 612.0);
    Set(page, u"ruleLinesVerticalColor", MacroValue(u"#00FF00"));
    Set(page, u"automaticSize", MacroValue(true));
    EXPECT_EQ(Get(page, u"orientation").string(), u"portrait");
    Set(page, u"marginLeft", MacroValue(20.5));
    EXPECT_EQ(session_->FinalizeModified(), 1u);
    session_->SaveModified();
    const Validation validation = ValidateFile(folder_->PagePath(Id(kFirst)));
    if (validation.available) { EXPECT_TRUE(validation.valid) << validation.output; }
}

TEST_F(ObjectValuesTest, ContentTypeOfParagraphs) {
    std::vector<std::u16string> types;
    for (const auto& page : {u"First", u"Second"}) {
        for (const ObjectRef& paragraph : On(u"Paragraph", page)) types.push_back(Get(paragraph, u"contentType").string());
    }
    const std::vector<std::u16string> expected = {u"text", u"text", u"text", u"text", u"table", u"text", u"text",
                                                  u"text", u"text", u"image", u"text", u"embedded media",
                                                  u"ink writing", u"embedded file", u"ink drawing", u"unknown"};
    EXPECT_EQ(types, expected);
}

TEST_F(ObjectValuesTest, TagsOfParagraphsAndImages) {
    const ObjectRef alpha = Paragraph(u"Alpha");
    EXPECT_EQ(Get(alpha, u"tagName").string(), u"To Do");
    EXPECT_EQ(Get(alpha, u"tagType").integer(), 0);
    EXPECT_EQ(Get(alpha, u"tagSymbol").integer(), 3);
    EXPECT_EQ(Get(alpha, u"tagHighlightColor").string(), u"none");
    EXPECT_TRUE(Get(alpha, u"tagCompleted").boolean());
    EXPECT_EQ(Get(alpha, u"tags").array()->size(), 1u);
    Set(alpha, u"tagCompleted", MacroValue(u"false"));
    const ObjectRef tag = On(u"Tag", u"First").front();
    EXPECT_FALSE(Get(tag, u"completed").boolean());
    EXPECT_EQ(Get(tag, u"name").string(), u"To Do");

    const ObjectRef plain = Paragraph(u"42");
    EXPECT_TRUE(Get(plain, u"tagName").IsEmpty());
    EXPECT_EQ(ErrorOf([&] { Set(plain, u"tagCompleted", MacroValue(true)); }),
              u"Cannot set property 'tagCompleted' on object of type 'Paragraph': it has no tag");
    const ObjectRef image = On(u"Image", u"First").back();
    EXPECT_EQ(Get(image, u"tagName").string(), u"To Do");
    EXPECT_EQ(Get(image, u"z").integer(), 1);
}

TEST_F(ObjectValuesTest, ListsOfParagraphs) {
    const ObjectRef nested = Paragraph(u"Nested");
    EXPECT_TRUE(Get(nested, u"isPartOfList").boolean());
    EXPECT_TRUE(Get(nested, u"isPartOfBulletedList").boolean());
    EXPECT_FALSE(Get(nested, u"isPartOfNumberedList").boolean());
    EXPECT_EQ(Get(nested, u"bulletFontSize").decimal(), 11.0);
    const ObjectRef numbered = Paragraph(u"42");
    EXPECT_EQ(Get(numbered, u"numberFormat").string(), u"##.");
    EXPECT_EQ(Get(numbered, u"numberFont").string(), u"Calibri");
    EXPECT_EQ(Get(numbered, u"text_numeric").decimal(), 42.0);
    EXPECT_EQ(Get(numbered, u"index").integer(), 1);
    EXPECT_EQ(ErrorOf([&] { Set(numbered, u"bulletFontSize", MacroValue(12)); }),
              u"Cannot set property 'bulletFontSize' on object of type 'Paragraph': it is not part of a bulleted list");
    Set(numbered, u"numberBold", MacroValue(true));
    EXPECT_TRUE(Get(numbered, u"numberBold").boolean());
}

TEST_F(ObjectValuesTest, TablesRowsColumnsCells) {
    const ObjectRef table = On(u"Table", u"First").front();
    EXPECT_EQ(Get(table, u"rowCount").integer(), 2);
    EXPECT_EQ(Get(table, u"colCount").integer(), 2);
    EXPECT_TRUE(Get(table, u"bordersVisible").boolean());
    const std::vector<ObjectRef> columns = On(u"Column", u"First");
    ASSERT_EQ(columns.size(), 2u);
    EXPECT_EQ(Get(columns[1], u"index").integer(), 1);
    EXPECT_EQ(Get(columns[1], u"width").decimal(), 90.0);
    EXPECT_TRUE(Get(columns[1], u"isLocked").boolean());
    const std::vector<ObjectRef> cells = On(u"Cell", u"First");
    ASSERT_EQ(cells.size(), 4u);
    EXPECT_EQ(Get(cells[3], u"text").string(), u"d");
    EXPECT_EQ(Get(cells[3], u"rowIndex").integer(), 1);
    EXPECT_EQ(Get(cells[3], u"colIndex").integer(), 1);
    EXPECT_EQ(Get(On(u"Row", u"First")[1], u"index").integer(), 1);
    Set(cells[0], u"text_numeric", MacroValue(2.5));
    EXPECT_EQ(Get(cells[0], u"text").string(), u"2.5");
    // A paragraph holding the table has no text to set.
    EXPECT_EQ(ErrorOf([&] { Set(On(u"Paragraph", u"First")[4], u"text", MacroValue(u"x")); }),
              u"Cannot set property 'text' on object of type 'Paragraph': it holds table, not text");
}

TEST_F(ObjectValuesTest, OutlineTextIsItsTextParagraphs) {
    const ObjectRef outline = On(u"Outline", u"First").front();
    EXPECT_EQ(Get(outline, u"text").string(), u"Alpha\nNested\n42");
    Set(outline, u"text", MacroValue(u"One\nTwo"));
    EXPECT_EQ(Get(outline, u"text").string(), u"One\nTwo");
    EXPECT_EQ(On(u"Table", u"First").size(), 1u);  // the table's paragraph is no text: kept
    Set(outline, u"text", MacroValue(u"One\nTwo\nThree"));
    EXPECT_EQ(Get(outline, u"text").string(), u"One\nTwo\nThree");
    EXPECT_EQ(session_->FinalizeModified(), 1u);
    session_->SaveModified();
    const Validation validation = ValidateFile(folder_->PagePath(Id(kFirst)));
    if (validation.available) { EXPECT_TRUE(validation.valid) << validation.output; }
}

TEST_F(ObjectValuesTest, WritesConvertToThePropertysKind) {
    const ObjectRef page = Page(u"Second");
    Set(page, u"pageLevel", MacroValue(u"3"));
    EXPECT_EQ(Get(page, u"pageLevel").kind(), Kind::Integer);
    EXPECT_EQ(Get(page, u"pageLevel").integer(), 3);
    Set(page, u"isUnread", MacroValue(u"False"));  // only "true", "True" and "1" are true
    EXPECT_FALSE(Get(page, u"isUnread").boolean());
    Set(page, u"dateTime", MacroValue(u"2024-05-01T10:30:00"));
    EXPECT_EQ(Get(page, u"dateTime").time().ToText(), u"2024-05-01T10:30:00");
    const ObjectRef section = Find(u"Section", u"Ideas");
    EXPECT_EQ(ErrorOf([&] { Set(section, u"name", MacroValue(std::make_shared<MacroArray>())); }),
              u"Cannot set property 'name' on object of type 'Section' to Array of size (0): expected a String");
    EXPECT_EQ(ErrorOf([&] { Set(page, u"dateTime", MacroValue(u"soon")); }),
              u"Cannot set property 'dateTime' on object of type 'Page' to soon (string): expected a DateTime");
    EXPECT_EQ(Get(section, u"name").string(), u"Ideas");
}

TEST_F(ObjectValuesTest, WritingTheSameValueChangesNothing) {
    Set(Paragraph(u"Alpha"), u"text", MacroValue(u"Alpha"));
    Set(Find(u"Section", u"Ideas"), u"color", MacroValue(u"#8AA8E4"));
    Set(Page(u"First"), u"orientation", MacroValue(u"portrait"));
    EXPECT_EQ(session_->FinalizeModified(), 0u);
    EXPECT_EQ(folder_->calls.updateHierarchy, 0);
}

TEST_F(ObjectValuesTest, HyperlinksComeFromOneNote) {
    const std::u16string section = Get(Find(u"Section", u"Ideas"), u"hyperlink").string();
    EXPECT_EQ(section, folder_->GetHyperlinkToObject(Id(kIdeas), u""));
    const std::u16string paragraph = Get(Paragraph(u"Alpha"), u"hyperlink").string();
    EXPECT_EQ(paragraph, folder_->GetHyperlinkToObject(Id(kFirst), Id(103)));
    EXPECT_NE(section, paragraph);
    EXPECT_EQ(folder_->calls.getHyperlinkToObject, 4);
}

TEST_F(ObjectValuesTest, WriteLogShowsTheValueBeforeAndAfter) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    const ObjectRef alpha = Paragraph(u"Alpha");
    log_.Take();
    Set(section, u"color", MacroValue(u"#000000"));
    Set(alpha, u"bold", MacroValue(true));
    const std::vector<std::u16string> expected = {
        u"\tModifying property(color) = #8AA8E4 (string)", u"\tNew value: #000000 (string)",
        u"\tModifying property(bold) = <empty>", u"\tNew value: <empty>"};
    EXPECT_EQ(log_.TakeLines(), expected);
}

TEST_F(ObjectValuesTest, ParagraphFormattingReachesTheText) {
    const ObjectRef alpha = Paragraph(u"Alpha");
    Set(alpha, u"bold", MacroValue(true));
    Set(alpha, u"fontSize", MacroValue(u"14"));
    const ObjectRef text = Get(alpha, u"texts").array()->elements().front().value->object();
    EXPECT_TRUE(Get(text, u"bold").boolean());
    EXPECT_EQ(Get(text, u"fontSize").decimal(), 14.0);
    EXPECT_EQ(ErrorOf([&] { Set(alpha, u"fontSize", MacroValue(u"-3")); }),
              u"Cannot set property 'fontSize' on object of type 'Paragraph' to -3 (string): expected a Numeric");
}

}  // namespace
}  // namespace qm::onenote::testing
