// SortObjects: objects move only among their siblings, keys compare as numbers or texts, equal
// keys keep their order, custom orders, and the errors.
#include <gtest/gtest.h>

#include "core/text.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

using Lines = std::vector<std::u16string>;

class SortTest : public SessionTest {
protected:
    MacroValue Sort(const std::vector<ObjectRef>& objects, MacroValue by, bool ascending) {
        auto array = std::make_shared<MacroArray>();
        for (const ObjectRef& object : objects) array->PushBack(MacroValue(object));
        return session_->SortObjects(MacroValue(array), by, MacroValue(ascending));
    }
    std::vector<std::u16string> Texts(const std::vector<ObjectRef>& objects, std::u16string_view property = u"text") {
        std::vector<std::u16string> texts;
        for (const ObjectRef& object : objects) texts.push_back(Get(object, property).AsString());
        return texts;
    }
    // A new outline on the page Cake holding paragraphs with these texts.
    std::vector<ObjectRef> Paragraphs(std::initializer_list<std::u16string_view> texts) {
        const ObjectRef outline =
            session_->InsertObject(MacroValue(Find(u"Page", u"Cake")), MacroValue(u"Outline"), MacroValue(-1)).object();
        Set(outline, u"text", MacroValue(u""));
        std::u16string all;
        for (std::u16string_view text : texts) all += (all.empty() ? u"" : u"\n") + std::u16string(text);
        Set(outline, u"text", MacroValue(all));
        outline_ = outline;
        return Query(u"Paragraph", outline);
    }
    std::vector<std::u16string> OutlineTexts() { return Texts(Query(u"Paragraph", outline_)); }
    ObjectRef outline_;
};

TEST_F(SortTest, NumericTextsSortByValueOtherTextsIgnoringCase) {
    Sort(Paragraphs({u"10", u"2", u"9"}), MacroValue(u"text"), true);
    EXPECT_EQ(OutlineTexts(), (Lines{u"2", u"9", u"10"}));
    Sort(Query(u"Paragraph", outline_), MacroValue(u"text"), false);
    EXPECT_EQ(OutlineTexts(), (Lines{u"10", u"9", u"2"}));
    Sort(Paragraphs({u"beta", u"Alpha", u"gamma"}), MacroValue(u"text"), true);
    EXPECT_EQ(OutlineTexts(), (Lines{u"Alpha", u"beta", u"gamma"}));
    EXPECT_EQ(session_->FinalizeModified(), 1u);
}

TEST_F(SortTest, EqualKeysKeepTheirOrderBothWays) {
    const std::vector<ObjectRef> paragraphs = Paragraphs({u"a1", u"b", u"a2", u"c"});
    auto keys = std::make_shared<MacroArray>();
    for (const char16_t* key : {u"x", u"y", u"x", u"a"}) keys->PushBack(MacroValue(key));
    Sort(paragraphs, MacroValue(keys), true);
    EXPECT_EQ(OutlineTexts(), (Lines{u"c", u"a1", u"a2", u"b"}));
    Sort(paragraphs, MacroValue(keys), false);
    EXPECT_EQ(OutlineTexts(), (Lines{u"b", u"a1", u"a2", u"c"}));
}

TEST_F(SortTest, OnlyTheSortedObjectsMove) {
    const std::vector<ObjectRef> paragraphs = Paragraphs({u"d", u"x", u"b", u"y", u"a"});
    Sort({paragraphs[0], paragraphs[2], paragraphs[4], paragraphs[2]}, MacroValue(u"text"), true);
    EXPECT_EQ(OutlineTexts(), (Lines{u"a", u"x", u"b", u"y", u"d"}));
}

TEST_F(SortTest, PagesStayInTheirSections) {
    const std::vector<ObjectRef> pages = Query(u"Page", Find(u"Notebook", u"Work"));
    log_.Take();
    EXPECT_TRUE(Sort(pages, MacroValue(u"name"), false).boolean());
    EXPECT_EQ(log_.TakeLines(), (Lines{u"Sort Keys for 2 objects:", u"\t[0] First", u"\t[1] Second",
                                       u"Sort Keys for 1 objects:", u"\t[0] Old page"}));
    EXPECT_EQ(Texts(Query(u"Page", Find(u"Section", u"Ideas")), u"name"), (Lines{u"Second", u"First"}));
    EXPECT_EQ(Texts(Query(u"Page", Find(u"Section", u"Old")), u"name"), (Lines{u"Old page"}));
    EXPECT_EQ(session_->FinalizeModified(), 0u);
    EXPECT_EQ(folder_->calls.updateHierarchy, 1);  // Ideas with its pages; Old did not change
}

TEST_F(SortTest, SectionsNotebooksRowsAndCells) {
    Sort(Query(u"Notebook", Root()), MacroValue(u"name"), true);
    EXPECT_EQ(Texts(Query(u"Notebook", Root()), u"name"), (Lines{u"Home", u"Work"}));
    const ObjectRef work = Find(u"Notebook", u"Work");
    // Sections and section groups share their parent's list.
    Sort({Find(u"Section", u"Ideas"), Find(u"SectionGroup", u"Archive")}, MacroValue(u"name"), true);
    EXPECT_EQ(Texts(Query(u"Section", work), u"name"), (Lines{u"Old", u"Ideas"}));
    Sort(Query(u"Section", work), MacroValue(u"name"), true);  // each alone among its siblings
    EXPECT_EQ(Texts(Query(u"Section", work), u"name"), (Lines{u"Old", u"Ideas"}));
    const ObjectRef table = Query(u"Table", Find(u"Page", u"First")).front();
    Sort(Query(u"Row", table), MacroValue(u"index"), false);
    EXPECT_EQ(Texts(Query(u"Cell", table)), (Lines{u"c", u"d", u"a", u"b"}));
    Sort(Query(u"Cell", Query(u"Row", table)[0]), MacroValue(u"text"), false);
    EXPECT_EQ(Texts(Query(u"Cell", table)), (Lines{u"d", u"c", u"a", u"b"}));
    // Kinds without a sorter are left alone.
    EXPECT_TRUE(Sort(Query(u"Column", table), MacroValue(u"width"), false).boolean());
}

TEST_F(SortTest, ArgumentsAndCustomOrders) {
    EXPECT_FALSE(Sort({}, MacroValue(u"text"), true).boolean());
    EXPECT_EQ(ErrorOf([&] { session_->SortObjects(MacroValue(u"x"), MacroValue(u"text"), MacroValue(true)); }),
              u"Expected an array at first parameter of SortObjects");
    auto mixed = std::make_shared<MacroArray>();
    mixed->PushBack(MacroValue(Root()));
    mixed->PushBack(MacroValue(u"x"));
    EXPECT_EQ(ErrorOf([&] { session_->SortObjects(MacroValue(mixed), MacroValue(u"text"), MacroValue(true)); }),
              u"Expected object in the array at first parameter of SortObjects");
    const std::vector<ObjectRef> paragraphs = Paragraphs({u"a", u"b", u"c"});
    auto gap = std::make_shared<MacroArray>();
    gap->PushBack(MacroValue(1));
    gap->PushBack(MacroValue(2));  // no key 2 for the third object
    try {
        Sort(paragraphs, MacroValue(gap), true);
        ADD_FAILURE() << "no error";
    } catch (const MacroError& e) {
        EXPECT_EQ(e.message(), u"");
        EXPECT_EQ(e.code(), -96);
    }
    EXPECT_EQ(ErrorOf([&] { Sort(paragraphs, MacroValue(u"nope"), true); }),
              u"A property named 'nope' on object of type 'Paragraph' does not exist.");
}

}  // namespace
}  // namespace qm::onenote::testing
