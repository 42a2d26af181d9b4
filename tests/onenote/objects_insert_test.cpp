// InsertObject: which children each parent takes, positions, what new objects hold, the limits
// and messages, and that the page stays valid OneNote XML.
#include <gtest/gtest.h>

#include "core/text.h"
#include "onenote/onenote_test_util.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

using Lines = std::vector<std::u16string>;

class InsertTest : public SessionTest {
protected:
    ObjectRef Insert(const ObjectRef& parent, std::u16string_view type, std::int32_t position) {
        const MacroValue made = session_->InsertObject(MacroValue(parent), MacroValue(type), MacroValue(position));
        return made.IsEmpty() ? nullptr : made.object();
    }
    ObjectRef First(std::u16string_view type) { return Query(type, Find(u"Page", u"First")).front(); }
    void ExpectFirstPageValid() {
        session_->FinalizeModified();
        session_->SaveModified();
        const Validation validation = ValidateFile(folder_->PagePath(Id(kFirst)));
        if (validation.available) { EXPECT_TRUE(validation.valid) << validation.output; }
    }
};

TEST_F(InsertTest, TextGoesAtTheStartOrTheEndOfAParagraph) {
    const ObjectRef alpha = Find(u"Paragraph", u"Alpha");
    EXPECT_EQ(ErrorOf([&] { Insert(alpha, u"Text", 1); }),
              u"Position must be 0 or -1 when inserting Text objects under a Paragraph");
    Set(Insert(alpha, u"Text", -1), u"value", MacroValue(u" end"));
    Set(Insert(alpha, u"Text", 0), u"value", MacroValue(u"Start "));
    EXPECT_EQ(Get(alpha, u"text").string(), u"Start Alpha end");
    // An empty paragraph gets its text element first.
    const ObjectRef paragraph = Insert(First(u"Outline"), u"Paragraph", -1);
    Set(Insert(paragraph, u"Text", 0), u"value", MacroValue(u"new"));
    EXPECT_EQ(Get(paragraph, u"text").string(), u"new");
    ExpectFirstPageValid();
}

TEST_F(InsertTest, PositionsAndTheirLog) {
    const ObjectRef page = Find(u"Page", u"First");
    Query(u"Outline", page);
    log_.Take();
    const ObjectRef last = Insert(page, u"Outline", 1000);
    const ObjectRef first = Insert(page, u"Outline", 0);
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tInserting an object of type Outline at at the end",
                                       u"\tInserting an object of type Outline at index [0]"}));
    const std::vector<ObjectRef> outlines = Query(u"Outline", page);
    ASSERT_EQ(outlines.size(), 3u);
    EXPECT_TRUE(outlines.front()->SameAs(*first));
    EXPECT_TRUE(outlines.back()->SameAs(*last));
    const ObjectRef inserted = Insert(outlines[1], u"Paragraph", 1);
    Set(inserted, u"text", MacroValue(u"between"));
    EXPECT_EQ(Get(outlines[1], u"text").string(), u"Alpha\nNested\nbetween\n42");
    EXPECT_EQ(session_->FinalizeModified(), 1u);
}

TEST_F(InsertTest, TablesRowsAndCells) {
    const ObjectRef cell = First(u"Cell");
    const ObjectRef table = Insert(cell, u"Table", -1);
    EXPECT_EQ(table->TypeName(), u"Table");
    EXPECT_EQ(Get(table, u"rowCount").integer(), 1);
    EXPECT_EQ(Get(table, u"colCount").integer(), 1);
    EXPECT_EQ(Get(cell, u"paragraphs").array()->size(), 2u);  // the table's own paragraph
    const ObjectRef outer = First(u"Table");
    const ObjectRef row = Insert(outer, u"Row", 0);
    EXPECT_EQ(Get(row, u"cells").array()->size(), 2u);  // one per column
    EXPECT_EQ(Get(outer, u"rowCount").integer(), 3);
    Insert(row, u"Cell", -1);
    EXPECT_EQ(Get(outer, u"colCount").integer(), 3);  // the columns follow the widest row
    ExpectFirstPageValid();
}

TEST_F(InsertTest, TagsAndTheirLimits) {
    const ObjectRef plain = Find(u"Paragraph", u"42");
    for (int i = 0; i < 20; ++i) Insert(plain, u"Tag", -1);
    EXPECT_EQ(Get(plain, u"tagName").string(), u"To Do");
    EXPECT_EQ(ErrorOf([&] { Insert(plain, u"Tag", -1); }), u"Too many tags are inserted on a single object");
    EXPECT_EQ(Get(plain, u"tags").array()->size(), 20u);

    const std::vector<ObjectRef> images = Query(u"Image", Find(u"Page", u"First"));
    EXPECT_EQ(ErrorOf([&] { Insert(images[0], u"Tag", 0); }),
              u"Cannot insert tags on an object of type Image inside an Outline. Insert the tag on the parent "
              u"Paragraph instead.");
    Insert(images[1], u"Tag", 0);
    EXPECT_EQ(Get(images[1], u"tags").array()->size(), 2u);
    const ObjectRef file = Query(u"EmbeddedFile", Find(u"Page", u"Second")).front();
    EXPECT_EQ(ErrorOf([&] { Insert(file, u"Tag", 0); }),
              u"Cannot insert tags on an object of type EmbeddedFile inside an Outline. Insert the tag on the parent "
              u"Paragraph instead.");
    ExpectFirstPageValid();
}

TEST_F(InsertTest, NewTagDefinitionOnAPageWithoutOne) {
    const ObjectRef cake = Query(u"Paragraph", Find(u"Page", u"Cake"))[1];
    const ObjectRef tag = Insert(cake, u"Tag", 0);
    EXPECT_EQ(Get(tag, u"name").string(), u"To Do");
    EXPECT_FALSE(Get(tag, u"completed").boolean());
    EXPECT_FALSE(Get(tag, u"creationDate").IsEmpty());
}

TEST_F(InsertTest, ChildrenEachParentRefuses) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    EXPECT_EQ(ErrorOf([&] { Insert(section, u"Outline", 0); }), u"Only objects of type Page can be inserted under a Section");
    EXPECT_EQ(ErrorOf([&] { Insert(Find(u"Page", u"First"), u"Paragraph", 0); }),
              u"Only objects of type Outline can be inserted under a Page");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Outline"), u"Row", 0); }),
              u"Only objects of type Paragraph or Table can be inserted under an Outline or a Cell");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Cell"), u"Cell", 0); }),
              u"Only objects of type Paragraph or Table can be inserted under an Outline or a Cell");
    EXPECT_EQ(ErrorOf([&] { Insert(Find(u"Paragraph", u"Alpha"), u"Image", 0); }),
              u"Only objects of type Text or Tag can be inserted under a Paragraph");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Table"), u"Cell", 0); }), u"Only objects of type Row can be inserted under a Table");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Row"), u"Row", 0); }), u"Only objects of type Cell can be inserted under a Row");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Image"), u"Text", 0); }),
              u"Only objects of type Tag can be inserted under an Image");
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Tag"), u"Tag", 0); }), u"Cannot insert objects under Tag");
    EXPECT_EQ(ErrorOf([&] { Insert(Root(), u"Notebook", 0); }), u"Cannot insert objects under NotebookRoot");
    EXPECT_EQ(ErrorOf([&] { session_->InsertObject(MacroValue(u"x"), MacroValue(u"Page"), MacroValue(0)); }),
              u"Expected an object at first parameter of InsertObject");
    const ObjectRef holder = Query(u"Paragraph", Find(u"Page", u"First"))[4];
    EXPECT_EQ(ErrorOf([&] { Insert(First(u"Table"), u"Row", 0); Insert(holder, u"Text", 0); }),
              u"Cannot insert objects of type Text under a Paragraph that holds table");
    EXPECT_EQ(session_->FinalizeModified(), 1u);  // the row went in before the refused text
}

TEST_F(InsertTest, PagesAreMadeByOneNoteAndMovedIntoPlace) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    const ObjectRef page = Insert(section, u"Page", 0);
    ASSERT_TRUE(page);
    EXPECT_EQ(folder_->calls.createNewPage, 1);
    const std::vector<ObjectRef> pages = Query(u"Page", section);
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[0], page);
    Set(Insert(page, u"Outline", -1), u"text", MacroValue(u"Hello"));
    EXPECT_EQ(session_->FinalizeModified(), 1u);
    EXPECT_EQ(folder_->calls.updateHierarchy, 1);  // the section with its pages in their new order
    session_->SaveModified();
    EXPECT_NE(folder_->GetPageContent(Get(page, u"id").string()).find(u"Hello"), std::u16string::npos);
}

}  // namespace
}  // namespace qm::onenote::testing
