// Many pages loaded or saved at once (their XML read and written on worker threads) behave as
// one page after the other: the same order, and a failing page stops the batch at that page.
#include <gtest/gtest.h>

#include "core/text.h"
#include "onenote/on_document.h"
#include "onenote/session_fixture.h"

namespace qm::onenote::testing {
namespace {

// OneNote over the test folder, except that one page's content comes back broken or is refused;
// it notes the pages it is sent.
class Seam final : public OneNoteApi {
public:
    explicit Seam(OneNoteApi& folder) : folder_(folder) {}

    std::u16string failing;
    bool refuse = false;
    std::vector<std::u16string> sent;

    std::u16string GetHierarchy(std::u16string_view id, HierarchyScope scope) override {
        return folder_.GetHierarchy(id, scope);
    }
    void UpdateHierarchy(std::u16string_view xml) override { folder_.UpdateHierarchy(xml); }
    std::u16string GetHierarchyParent(std::u16string_view id) override { return folder_.GetHierarchyParent(id); }
    std::u16string GetPageContent(std::u16string_view id) override {
        if (id != failing) return folder_.GetPageContent(id);
        if (refuse) throw OneNoteError(hr::kPageCouldNotBeOpened);
        return u"<one:Page xmlns:one=\"http://schemas.microsoft.com/office/onenote/2010/onenote\">";
    }
    void UpdatePageContent(std::u16string_view xml, std::optional<xml::SystemTime> expected) override {
        sent.push_back(*ON::ReadPage(xml, u"sent")->name);
        folder_.UpdatePageContent(xml, expected);
    }
    std::u16string GetHyperlinkToObject(std::u16string_view id, std::u16string_view object) override {
        return folder_.GetHyperlinkToObject(id, object);
    }
    std::u16string CreateNewPage(std::u16string_view id) override { return folder_.CreateNewPage(id); }

private:
    OneNoteApi& folder_;
};

using Lines = std::vector<std::u16string>;

class SessionBatchTest : public SessionTest {
protected:
    void Use(Seam& seam) {
        session_ = std::make_unique<Session>(seam);
        session_->SetLog(&log_);
    }
};

TEST_F(SessionBatchTest, LoadingStopsAtAPageThatFails) {
    for (const bool refuse : {false, true}) {
        SCOPED_TRACE(refuse ? "refused" : "not well-formed");
        Seam seam(*folder_);
        seam.failing = Id(kOldPage);
        seam.refuse = refuse;
        Use(seam);
        std::string error;
        try {
            Query(u"Paragraph", Root());
        } catch (const std::exception& e) {
            error = e.what();
        }
        EXPECT_NE(error.find(refuse ? "could not be opened" : ToUtf8(Id(kOldPage))), std::string::npos) << error;
        const Lines lines = log_.TakeLines();
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
                  (Lines{u"\tRetrieving contents for page First", u"\tRetrieving contents for page Second",
                         u"\tRetrieving contents for page Old page"}));
        EXPECT_EQ(session_->pagesLoaded(), 2u);
        EXPECT_EQ(session_->LoadedContent(Id(kCake)), nullptr);
    }
}

TEST_F(SessionBatchTest, PagesAreSentInLoadOrderUntilOneFails) {
    Seam seam(*folder_);
    Use(seam);
    Query(u"Paragraph", Root());
    for (const int page : {kCake, kOldPage, kSecond, kFirst}) session_->PageModified(*session_->LoadedContent(Id(page)));
    EXPECT_EQ(session_->FinalizeModified(), 4u);
    // Old page lies in a read-only section.
    EXPECT_THROW(session_->SaveModified(), OneNoteError);
    EXPECT_EQ(seam.sent, (Lines{u"First", u"Second", u"Old page"}));
}

}  // namespace
}  // namespace qm::onenote::testing
