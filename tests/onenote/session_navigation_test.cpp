// GetParentOfType, GetAncestorOfType and the current notebook, section group, section and page.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/text.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

using Lines = std::vector<std::u16string>;

class SessionNavigationTest : public SessionTest {
protected:
    // The walk's result and what it stored in the output variable (empty when nothing).
    struct Walk {
        bool found = false;
        MacroValue stored;
    };
    Walk Parent(const ObjectRef& object, std::u16string_view type, bool parentOnly = true) {
        Argument out{MacroValue(), std::make_shared<MacroValue>()};
        const MacroValue result = parentOnly
                                      ? session_->GetParentOfType(MacroValue(object), MacroValue(type), out)
                                      : session_->GetAncestorOfType(MacroValue(object), MacroValue(type), out);
        return {result.boolean(), *out.slot};
    }
    std::u16string TypeOf(const MacroValue& value) { return value.IsEmpty() ? u"" : value.object()->TypeName(); }
    ObjectRef Paragraph(std::u16string_view text) { return Find(u"Paragraph", text); }
};

TEST_F(SessionNavigationTest, ParagraphInAnOutlineHasNoPageForParentButThePageForAncestor) {
    const ObjectRef alpha = Paragraph(u"Alpha");
    log_.Take();
    const Walk parent = Parent(alpha, u"Page");
    EXPECT_FALSE(parent.found);
    EXPECT_TRUE(parent.stored.IsEmpty());
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tLooking for a parent of type Page of an Paragraph \"Alpha\" (Paragraph)",
                                       u"\t\tCurrent object is of type: Paragraph, looking for its parent",
                                       u"\t\tCannot find Outline \"Alpha Nested 42\" (Outline)"}));

    const Walk ancestor = Parent(alpha, u"Page", false);
    EXPECT_TRUE(ancestor.found);
    EXPECT_EQ(ancestor.stored.object(), Find(u"Page", u"First"));
    log_.Take();
    Parent(alpha, u"Page", false);
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tLooking for an ancestor of type Page of an Paragraph \"Alpha\" (Paragraph)",
                                       u"\t\tCurrent object is of type: Paragraph, looking for its parent",
                                       u"\t\tCurrent object is of type: Outline, looking for its parent",
                                       u"\t\tFound Page \"First\" (Page)"}));
}

TEST_F(SessionNavigationTest, NothingIsAboveTheNotebookRoot) {
    log_.Take();
    EXPECT_FALSE(Parent(Root(), u"Notebook", false).found);
    EXPECT_EQ(log_.TakeLines(), (Lines{u"\tLooking for an ancestor of type Notebook of an notebook root (NotebookRoot)",
                                       u"\t\tAlready at notebook root, can't go further"}));
    const ObjectRef cake = Find(u"Page", u"Cake");
    log_.Take();
    EXPECT_FALSE(Parent(cake, u"Table", false).found);
    const Lines lines = log_.TakeLines();
    EXPECT_EQ(lines.back(), u"\t\tAlready at notebook root, can't go further");
    EXPECT_EQ(lines[lines.size() - 2], u"\t\tCurrent object is of type: notebook, looking for its parent");
    EXPECT_TRUE(Parent(Find(u"Notebook", u"Home"), u"NotebookRoot").found);
}

TEST_F(SessionNavigationTest, ParentsInsidePages) {
    const ObjectRef first = Find(u"Page", u"First");
    auto parentType = [&](const ObjectRef& object) {
        const ObjectRef parent = session_->ParentOf(*object);
        return parent ? parent->TypeName() : u"";
    };
    const std::vector<ObjectRef> paragraphs = Query(u"Paragraph", first);
    EXPECT_EQ(parentType(paragraphs[0]), u"Title");
    EXPECT_EQ(parentType(Query(u"Title", first)[0]), u"Page");
    EXPECT_EQ(parentType(Paragraph(u"Nested")), u"Paragraph");
    EXPECT_EQ(parentType(paragraphs[5]), u"Cell");  // "a"
    EXPECT_EQ(parentType(Query(u"Cell", first)[0]), u"Row");
    EXPECT_EQ(parentType(Query(u"Row", first)[0]), u"Table");
    EXPECT_EQ(parentType(Query(u"Column", first)[0]), u"Table");
    EXPECT_EQ(parentType(Query(u"Table", first)[0]), u"Paragraph");
    EXPECT_EQ(parentType(Query(u"Tag", first)[0]), u"Paragraph");
    EXPECT_EQ(parentType(Query(u"Tag", first)[1]), u"Image");
    EXPECT_EQ(parentType(Query(u"Image", first)[1]), u"Page");
    EXPECT_EQ(parentType(Query(u"Text", Paragraph(u"Alpha"))[0]), u"Paragraph");
    const Walk cell = Parent(Query(u"Text", first)[4], u"Cell", false);
    ASSERT_TRUE(cell.found);
    EXPECT_EQ(Get(cell.stored.object(), u"text").string(), u"a");
}

TEST_F(SessionNavigationTest, HierarchyParentsComeFromOneNoteAndTheCache) {
    const ObjectRef old = Find(u"Page", u"Old page");
    const int before = folder_->calls.getHierarchyParent;
    const Walk group = Parent(old, u"SectionGroup", false);
    ASSERT_TRUE(group.found);
    EXPECT_EQ(group.stored.object(), Find(u"SectionGroup", u"Archive"));
    EXPECT_EQ(folder_->calls.getHierarchyParent, before + 2);  // page -> section -> group
    EXPECT_EQ(Parent(old, u"Notebook", false).stored.object(), Find(u"Notebook", u"Work"));
    EXPECT_FALSE(Parent(old, u"SectionGroup").found);
}

TEST_F(SessionNavigationTest, ArgumentErrorsAndOutputs) {
    EXPECT_EQ(ErrorOf([&] { Parent(nullptr, u"Page"); }), u"Expected an object at first parameter of GetParentOfType");
    Argument out{MacroValue(), std::make_shared<MacroValue>(u"kept")};
    EXPECT_EQ(ErrorOf([&] { session_->GetAncestorOfType(MacroValue(u"x"), MacroValue(u"Page"), out); }),
              u"Expected an object at first parameter of GetAncestorOfType");
    // Nothing found: the output keeps its value; an unknown type name is never found.
    EXPECT_FALSE(session_->GetAncestorOfType(MacroValue(Paragraph(u"Alpha")), MacroValue(u"page"), out).boolean());
    EXPECT_EQ(out.slot->string(), u"kept");
    // An output that is no variable is simply not stored.
    Argument none{MacroValue(), nullptr};
    EXPECT_TRUE(session_->GetParentOfType(MacroValue(Paragraph(u"Alpha")), MacroValue(u"Outline"), none).boolean());
}

TEST_F(SessionNavigationTest, CurrentObjectsFetchOnlyTheirPath) {
    EXPECT_EQ(TypeOf(session_->GetNotebookRoot()), u"NotebookRoot");
    EXPECT_EQ(folder_->calls.Total(), 0);
    EXPECT_EQ(Get(session_->GetCurrentNotebook().object(), u"name").string(), u"Work");
    EXPECT_EQ(Get(session_->GetCurrentSection().object(), u"name").string(), u"Ideas");
    EXPECT_EQ(Get(session_->GetCurrentPage().object(), u"name").string(), u"First");
    // The current section is in no group: the notebook stands for the group.
    EXPECT_EQ(Get(session_->GetCurrentSectionGroup().object(), u"name").string(), u"Work");
    const auto& scopes = folder_->calls.getHierarchyByScope;
    EXPECT_EQ(scopes[static_cast<int>(HierarchyScope::Notebooks)], 1);
    EXPECT_EQ(scopes[static_cast<int>(HierarchyScope::Sections)], 1);
    EXPECT_EQ(scopes[static_cast<int>(HierarchyScope::Pages)], 1);  // below the section only
    EXPECT_EQ(folder_->calls.getPageContent, 0);
}

TEST_F(SessionNavigationTest, CurrentSectionInsideAGroup) {
    std::ifstream in(dir_ / "hierarchy.xml", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    in.close();
    std::string hierarchy = text.str();
    for (std::size_t at; (at = hierarchy.find(" isCurrentlyViewed=\"true\"")) != std::string::npos;) {
        hierarchy.erase(at, 25);
    }
    hierarchy.replace(hierarchy.find("name=\"Work\""), 11, "name=\"Work\" isCurrentlyViewed=\"true\"");
    hierarchy.replace(hierarchy.find("name=\"Archive\""), 14, "name=\"Archive\" isCurrentlyViewed=\"true\"");
    hierarchy.replace(hierarchy.find("name=\"Old\""), 10, "name=\"Old\" isCurrentlyViewed=\"true\"");
    std::ofstream(dir_ / "hierarchy.xml", std::ios::binary) << hierarchy;
    NotebookFolder folder(dir_);
    Session session(folder);
    EXPECT_EQ(session.GetCurrentSectionGroup().object()->GetProperty(u"name", false).string(), u"Archive");
    EXPECT_EQ(session.GetCurrentSection().object()->GetProperty(u"name", false).string(), u"Old");
    EXPECT_TRUE(session.GetCurrentPage().IsEmpty());  // no page of it is marked
}

}  // namespace
}  // namespace qm::onenote::testing
