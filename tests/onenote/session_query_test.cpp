// Queries over the session: what each query fetches from OneNote (and what it never fetches),
// document order, one object per node, one load per page, and the log lines.
#include <gtest/gtest.h>

#include <fstream>

#include "core/text.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/onenote_test_util.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

class SessionQueryTest : public SessionTest {
protected:
    std::vector<std::u16string> Names(const std::vector<ObjectRef>& objects, std::u16string_view property = u"name") {
        std::vector<std::u16string> names;
        for (const ObjectRef& object : objects) names.push_back(Get(object, property).AsString());
        return names;
    }
    int Scope(HierarchyScope scope) const { return folder_->calls.getHierarchyByScope[static_cast<int>(scope)]; }
};

using Lines = std::vector<std::u16string>;

TEST_F(SessionQueryTest, SectionsAreFetchedWithoutPages) {
    EXPECT_EQ(Names(Query(u"Section", Root())), (Lines{u"Ideas", u"Old", u"Recipes"}));
    EXPECT_EQ(folder_->calls.getHierarchy, 1);
    EXPECT_EQ(Scope(HierarchyScope::Sections), 1);
    EXPECT_EQ(folder_->calls.getPageContent, 0);
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tQuerying each section in notebook root (NotebookRoot)",
                                       u"\tRetrieving list of sections under notebook root (NotebookRoot)"}));
    EXPECT_EQ(Names(Query(u"SectionGroup", Root())), (Lines{u"Archive"}));
    EXPECT_EQ(folder_->calls.getHierarchy, 1);  // known already
}

TEST_F(SessionQueryTest, QueryingInsideASectionFetchesNothing) {
    const ObjectRef section = Find(u"Section", u"Ideas");
    const int before = folder_->calls.Total();
    log_.Take();
    const std::vector<ObjectRef> sections = Query(u"Section", section);
    ASSERT_EQ(sections.size(), 1u);  // the scope itself
    EXPECT_EQ(sections[0], section);
    EXPECT_TRUE(Query(u"SectionGroup", section).empty());
    EXPECT_TRUE(Query(u"Notebook", section).empty());
    EXPECT_EQ(folder_->calls.Total(), before);
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tQuerying each section in Section \"Ideas\" (Section)",
                                       u"\tQuerying each section group in Section \"Ideas\" (Section)",
                                       u"\tQuerying each notebook in Section \"Ideas\" (Section)"}));
}

TEST_F(SessionQueryTest, PagesComeInDocumentOrderFromOneFetch) {
    EXPECT_EQ(Names(Query(u"Page", Root())), (Lines{u"First", u"Second", u"Old page", u"Cake"}));
    EXPECT_EQ(Names(Query(u"Page", Root())), (Lines{u"First", u"Second", u"Old page", u"Cake"}));
    EXPECT_EQ(folder_->calls.getHierarchy, 1);
    EXPECT_EQ(Scope(HierarchyScope::Pages), 1);
    EXPECT_EQ(folder_->calls.getPageContent, 0);
    // A notebook known to sections only is fetched again below it, to its pages.
    EXPECT_EQ(Names(Query(u"Notebook", Root())), (Lines{u"Work", u"Home"}));
    EXPECT_EQ(folder_->calls.getHierarchy, 1);
}

TEST_F(SessionQueryTest, DeeperFetchesBelowANotebookKeepTheObjectsFetchedBefore) {
    const ObjectRef work = Find(u"Notebook", u"Work");
    const ObjectRef ideas = Query(u"Section", work).front();
    const std::vector<ObjectRef> pages = Query(u"Page", work);
    EXPECT_EQ(Scope(HierarchyScope::Notebooks), 1);
    EXPECT_EQ(Scope(HierarchyScope::Sections), 1);
    EXPECT_EQ(Scope(HierarchyScope::Pages), 1);
    EXPECT_EQ(Names(pages), (Lines{u"First", u"Second", u"Old page"}));
    EXPECT_EQ(Query(u"Section", Root()).front(), ideas);
    EXPECT_EQ(Get(ideas, u"pages").array()->elements()[0].value->object(), pages[0]);
    EXPECT_EQ(Get(ideas, u"pageCount").integer(), 2);
}

TEST_F(SessionQueryTest, PageContentIsLoadedOncePerPage) {
    EXPECT_EQ(Query(u"Paragraph", Root()).size(), 20u);
    EXPECT_EQ(folder_->calls.getPageContent, 4);
    const Lines lines = log_.TakeLines();
    EXPECT_EQ(lines, (Lines{u"\tQuerying each Paragraph in notebook root (NotebookRoot)",
                            u"\tRetrieving page contents under notebook root (NotebookRoot)",
                            u"\tRetrieving contents for page First", u"\tRetrieving contents for page Second",
                            u"\tRetrieving contents for page Old page", u"\tRetrieving contents for page Cake"}));
    EXPECT_EQ(Query(u"Text", Root()).size(), 13u);
    Query(u"Paragraph", Find(u"Page", u"First"));
    EXPECT_EQ(folder_->calls.getPageContent, 4);
    EXPECT_EQ(session_->pagesLoaded(), 4u);
}

TEST_F(SessionQueryTest, ContentInDocumentOrder) {
    const ObjectRef first = Find(u"Page", u"First");
    EXPECT_EQ(Names(Query(u"Paragraph", first), u"text"),
              (Lines{u"First", u"Alpha", u"Nested", u"42", u"", u"a", u"b", u"c", u"d", u""}));
    EXPECT_EQ(Names(Query(u"Cell", first), u"text"), (Lines{u"a", u"b", u"c", u"d"}));
    EXPECT_EQ(Query(u"Outline", first).size(), 1u);
    EXPECT_EQ(Query(u"Title", first).size(), 1u);
    EXPECT_EQ(Query(u"Tag", first).size(), 2u);
    // Below a paragraph: itself and what it holds.
    const ObjectRef alpha = Query(u"Paragraph", first)[1];
    EXPECT_EQ(Names(Query(u"Paragraph", alpha), u"text"), (Lines{u"Alpha", u"Nested"}));
    EXPECT_EQ(Names(Query(u"Text", alpha), u"value"), (Lines{u"Alpha", u"Nested"}));
}

TEST_F(SessionQueryTest, OneObjectPerNodeAndEqualContentObjects) {
    const ObjectRef a = Find(u"Section", u"Ideas");
    const ObjectRef b = Find(u"Section", u"Ideas");
    EXPECT_EQ(a, b);
    const ObjectRef first = Find(u"Page", u"First");
    const std::vector<ObjectRef> once = Query(u"Paragraph", first);
    const std::vector<ObjectRef> again = Query(u"Paragraph", first);
    EXPECT_NE(once[1], again[1]);  // made on demand ...
    EXPECT_TRUE(Equals(MacroValue(once[1]), MacroValue(again[1])));  // ... and equal
    EXPECT_FALSE(Equals(MacroValue(once[1]), MacroValue(again[2])));
    EXPECT_FALSE(Equals(MacroValue(a), MacroValue(Find(u"Section", u"Old"))));
}

TEST_F(SessionQueryTest, NotebookRootIsFoundOnlyAtTheRoot) {
    EXPECT_EQ(Query(u"NotebookRoot", Root()).size(), 1u);
    EXPECT_EQ(folder_->calls.Total(), 0);
    EXPECT_TRUE(Query(u"NotebookRoot", Find(u"Notebook", u"Home")).empty());
}

TEST_F(SessionQueryTest, ArgumentErrors) {
    EXPECT_EQ(ErrorOf([&] { session_->QueryObjects(MacroValue(u"Section"), MacroValue(u"x")); }),
              u"Expected an object at second parameter of QueryObjects");
    EXPECT_EQ(ErrorOf([&] { session_->QueryObjects(MacroValue(u"Sections"), MacroValue(Root())); }),
              u"Unknown object type 'Sections' at first parameter of QueryObjects");
    EXPECT_EQ(ErrorOf([&] { session_->QueryText(MacroValue(u"x"), MacroValue(u"a"), MacroValue(false)); }),
              u"Expected an object at second parameter of QueryText");
}

TEST_F(SessionQueryTest, QueryTextFindsPiecesUnderTheScope) {
    const ObjectRef first = Find(u"Page", u"First");
    log_.Take();
    const MacroValue found = session_->QueryText(MacroValue(first), MacroValue(u"a"), MacroValue(u"true"));
    ASSERT_EQ(found.array()->size(), 3u);  // "A" and "a" of Alpha, the cell "a"
    EXPECT_EQ(log_.TakeLines().back(), FoundTextLogLine(3, u"a"));
    const MacroValue exact = session_->QueryText(MacroValue(first), MacroValue(u"a"), MacroValue(false));
    EXPECT_EQ(exact.array()->size(), 2u);
    // Writing a piece changes its page.
    found.array()->elements()[0].value->object()->SetProperty(u"value", MacroValue(u"E"));
    EXPECT_EQ(Get(Query(u"Paragraph", first)[1], u"text").string(), u"Elpha");
    EXPECT_EQ(session_->FinalizeModified(), 1u);
}

// Section groups and paragraphs nested about as deep as a document may nest: queries, walks up
// and text work without running out of stack.
TEST_F(SessionQueryTest, DeeplyNestedHierarchiesAndPages) {
    constexpr int kDepth = 700;
    std::string hierarchy = "<?xml version=\"1.0\"?>\n<one:Notebooks xmlns:one=\"" + ToUtf8(ON::kNamespace) +
                            "\"><one:Notebook name=\"Deep\" ID=\"" + ToUtf8(Id(1)) + "\">";
    for (int i = 0; i < kDepth; ++i) hierarchy += "<one:SectionGroup name=\"g\" ID=\"" + ToUtf8(Id(1000 + i)) + "\">";
    // Two pages: loaded together, their XML is read on worker threads, as deep as on this one.
    hierarchy += "<one:Section name=\"Bottom\" ID=\"" + ToUtf8(Id(2)) + "\"><one:Page ID=\"" + ToUtf8(Id(3)) +
                 "\" name=\"P\"/><one:Page ID=\"" + ToUtf8(Id(4)) + "\" name=\"Q\"/></one:Section>";
    for (int i = 0; i < kDepth; ++i) hierarchy += "</one:SectionGroup>";
    hierarchy += "</one:Notebook></one:Notebooks>\n";
    std::string page = "<one:Outline><one:OEChildren>";
    constexpr int kParagraphs = 300;
    for (int i = 0; i < kParagraphs; ++i) page += "<one:OE><one:T><![CDATA[x]]></one:T><one:OEChildren>";
    page += "<one:OE><one:T><![CDATA[bottom]]></one:T></one:OE>";
    for (int i = 0; i < kParagraphs; ++i) page += "</one:OEChildren></one:OE>";
    page += "</one:OEChildren></one:Outline>";
    const std::filesystem::path deep = ScratchDir("session-deep");
    std::filesystem::create_directories(deep / "pages");
    std::ofstream(deep / "hierarchy.xml", std::ios::binary) << hierarchy;
    for (const int id : {3, 4}) {
        std::ofstream(deep / "pages" / NotebookFolder::PageFileName(Id(id)), std::ios::binary)
            << "<?xml version=\"1.0\"?>\n<one:Page xmlns:one=\"" << ToUtf8(ON::kNamespace) << "\" ID=\""
            << ToUtf8(Id(id)) << "\">" << page << "</one:Page>\n";
    }

    NotebookFolder folder(deep);
    Session session(folder);
    const MacroValue sections = session.QueryObjects(MacroValue(u"Section"), session.GetNotebookRoot());
    ASSERT_EQ(sections.array()->size(), 1u);
    const ObjectRef bottom = sections.array()->elements()[0].value->object();
    Argument out{MacroValue(), std::make_shared<MacroValue>()};
    EXPECT_TRUE(session.GetAncestorOfType(MacroValue(bottom), MacroValue(u"Notebook"), out).boolean());
    const MacroValue paragraphs = session.QueryObjects(MacroValue(u"Paragraph"), MacroValue(bottom));
    ASSERT_EQ(paragraphs.array()->size(), static_cast<std::size_t>(2 * (kParagraphs + 1)));
    const ObjectRef last = paragraphs.array()->elements().back().value->object();
    EXPECT_TRUE(session.GetAncestorOfType(MacroValue(last), MacroValue(u"Outline"), out).boolean());
    const ObjectRef outline = out.slot->object();
    EXPECT_EQ(outline->GetProperty(u"text", false).string().size(), static_cast<std::size_t>(2 * kParagraphs + 6));
    outline->SetProperty(u"text", MacroValue(u"flat"));
    EXPECT_EQ(session.FinalizeModified(), 1u);
    session.SaveModified();
}

}  // namespace
}  // namespace qm::onenote::testing
