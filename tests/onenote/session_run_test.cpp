// Whole runs through the run driver over a copy of the sample notebook: the macro's changes are
// written back as OneNote takes them (valid page XML, one update per changed page or node), and
// nothing is written when the run does not save.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/text.h"
#include "onenote/notebook_folder.h"
#include "onenote/on_document.h"
#include "onenote/onenote_test_util.h"
#include "onenote/plain_text.h"
#include "onenote/session.h"
#include "runtime/run_driver.h"
#include "runtime/run_harness.h"

namespace qm::onenote::testing {
namespace {

namespace fs = std::filesystem;

class SessionRunTest : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = ScratchDir(std::string("run-") + info->name());
        fs::copy(SampleNotebookDir(), dir_, fs::copy_options::recursive);
        logPath_ = dir_.parent_path() / (std::string("run-") + info->name() + ".log");
        folder_ = std::make_unique<NotebookFolder>(dir_);
        session_ = std::make_unique<Session>(*folder_);
    }

    RunResult Run(std::u16string_view text) {
        const std::shared_ptr<M2::Macro> macro = test::ReadMacro(text);
        RunEnvironment environment;
        environment.objects = session_.get();
        environment.documents = session_.get();
        environment.logOpened = [this](LogSink* log) { session_->SetLog(log); };
        return driver_.runMacro(macro.get(), RunSettings{true, logPath_}, environment);
    }

    std::string Log() {
        std::ifstream in(logPath_, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

    // The paragraphs' texts of a page as the folder now holds it.
    std::vector<std::u16string> PageTexts(std::u16string_view pageId) {
        const std::shared_ptr<ON::Page> page = ON::ReadPage(folder_->GetPageContent(pageId), u"page");
        std::vector<std::u16string> out;
        for (const auto& choice : page->elements) {
            if (!choice->outline) continue;
            for (const auto& list : choice->outline->oeChildren) {
                for (const auto& item : list->items) {
                    if (item->oe) out.push_back(ParagraphText(*item->oe));
                }
            }
        }
        return out;
    }

    test::FakeUi ui_;
    MacroRunDriver driver_{ui_};
    fs::path dir_;
    fs::path logPath_;
    std::unique_ptr<NotebookFolder> folder_;
    std::unique_ptr<Session> session_;
};

constexpr std::u16string_view kLemonCake = u"{F3C8A767-6B2E-4D9F-A14C-8B7D2E0A5E07}{1}{E19551348720312895214720176823459981024610306}";

TEST_F(SessionRunTest, EveryParagraphChangedAndWrittenBackValid) {
    const RunResult result = Run(
        u"#name Mark\n"
        u"$notebook = QueryObjects(\"Notebook\", GetNotebookRoot())[1]\n"
        u"ForEach $p in QueryObjects(\"Paragraph\", $notebook)\n"
        u"  If $p.contentType == \"text\"\n"
        u"    $p.text = \"* \" & $p.text\n");
    ASSERT_EQ(result.outcome, RunOutcome::Finished) << ToUtf8(result.errorMessage);
    EXPECT_EQ(result.pagesModified, 3u);
    EXPECT_TRUE(result.pagesSaved);
    EXPECT_EQ(ui_.questions.size(), 1u);  // three pages: the user was asked once
    EXPECT_EQ(folder_->calls.getPageContent, 3);
    EXPECT_EQ(folder_->calls.updatePageContent, 3);
    EXPECT_EQ(folder_->calls.updateHierarchy, 0);
    for (const fs::directory_entry& file : fs::directory_iterator(dir_ / "pages")) {
        const Validation validation = ValidateFile(file.path());
        if (validation.available) { EXPECT_TRUE(validation.valid) << file.path() << validation.output; }
    }
    const std::vector<std::u16string> texts = PageTexts(kLemonCake);
    ASSERT_FALSE(texts.empty());
    for (const std::u16string& text : texts) EXPECT_EQ(text.substr(0, 2), u"* ") << ToUtf8(text);
    // The page names follow the changed titles.
    EXPECT_NE(folder_->GetHierarchy(kLemonCake, HierarchyScope::Self).find(u"name=\"* Lemon cake\""),
              std::u16string::npos);
    EXPECT_NE(Log().find("\r\n\tRetrieving page contents under Notebook \"Personal\" (Notebook)"), std::string::npos);
    EXPECT_NE(Log().find("\r\n3 pages are modified. They will now be saved to OneNote"), std::string::npos);
}

TEST_F(SessionRunTest, RefusedOrDiscardedChangesAreNotWritten) {
    ui_.answer = Confirmation{false, false};
    const char16_t* macro =
        u"ForEach $p in QueryObjects(\"Page\", GetCurrentSection())\n"
        u"  ForEach $q in QueryObjects(\"Paragraph\", $p)\n"
        u"    $q.bold = true\n";
    EXPECT_EQ(Run(macro).outcome, RunOutcome::Refused);
    EXPECT_EQ(folder_->calls.updatePageContent, 0);

    session_ = std::make_unique<Session>(*folder_);
    const RunResult exited = Run(u"$s = GetCurrentSection()\n$s.name = \"Renamed\"\n$s.pages[0].isUnread = true\nExitMacro(false)\n");
    EXPECT_EQ(exited.outcome, RunOutcome::Exited);
    EXPECT_EQ(folder_->calls.updateHierarchy, 0);
}

TEST_F(SessionRunTest, HierarchyChangesAloneAreSaved) {
    const RunResult result =
        Run(u"$s = GetCurrentSection()\n$s.name = \"Team meetings\"\n$s.pages[1].isUnread = true\n$s.color = \"#FF0000\"\n");
    ASSERT_EQ(result.outcome, RunOutcome::Finished) << ToUtf8(result.errorMessage);
    EXPECT_EQ(result.pagesModified, 0u);
    EXPECT_EQ(folder_->calls.updateHierarchy, 2);  // the section once, its page once
    EXPECT_EQ(folder_->calls.updatePageContent, 0);
    const std::u16string hierarchy = folder_->GetHierarchy(u"", HierarchyScope::Pages);
    EXPECT_NE(hierarchy.find(u"name=\"Team meetings\""), std::u16string::npos);
    EXPECT_NE(hierarchy.find(u"color=\"#FF0000\""), std::u16string::npos);
    EXPECT_NE(Log().find("\r\n\tModifying property(name) = Meetings (string)\r\n\tNew value: Team meetings (string)"),
              std::string::npos);
}

TEST_F(SessionRunTest, WritingToAReadOnlySectionFailsTheSave) {
    const RunResult result = Run(
        u"$old = QueryObjects(\"Section\", GetNotebookRoot())[2]\n"
        u"$p = QueryObjects(\"Paragraph\", $old)[1]\n"
        u"$p.text = \"changed\"\n");
    EXPECT_EQ(result.outcome, RunOutcome::Failed);
    EXPECT_EQ(result.errorMessage, u"The section is read-only.");
}

}  // namespace
}  // namespace qm::onenote::testing
