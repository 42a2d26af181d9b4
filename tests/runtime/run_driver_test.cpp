// The run driver with a fake user interface and fake pages: saving with and without asking, the
// session table of confirmations, ExitMacro, errors, cancellation and the macro log.
#include <gtest/gtest.h>

#include <filesystem>

#include "runtime/macro_log.h"
#include "runtime/run_driver.h"
#include "run_harness.h"
#include "xml/file_io.h"

namespace qm::test {
namespace {

class FakeDocuments final : public RunDocuments {
public:
    std::size_t modified = 0;
    int finalized = 0;
    int saved = 0;

    std::size_t FinalizeModified() override {
        ++finalized;
        return modified;
    }
    void SaveModified() override { ++saved; }
};

class RunDriverTest : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        logPath_ = std::filesystem::temp_directory_path() /
                   (std::string("quillmark-driver-") + info->name() + ".txt");
        std::filesystem::remove(logPath_);
        environment_.documents = &documents_;
    }
    void TearDown() override { std::filesystem::remove(logPath_); }

    RunResult Run(std::u16string_view text, bool logging = true, std::u16string id = u"{id-1}") {
        macro_ = ReadMacro(text);
        macro_->name = u"Tidy";
        macro_->id = id;
        RunSettings settings{logging, logPath_};
        return driver_.runMacro(macro_.get(), settings, environment_);
    }

    std::string Log() const { return io::ReadFileBytes(logPath_); }

    FakeUi ui_;
    FakeDocuments documents_;
    RunEnvironment environment_;
    MacroRunDriver driver_{ui_};
    std::shared_ptr<M2::Macro> macro_;
    std::filesystem::path logPath_;
};

TEST_F(RunDriverTest, OnePageSavedWithoutAsking) {
    documents_.modified = 1;
    RunResult result = Run(u"$x = 1\n");
    EXPECT_EQ(result.outcome, RunOutcome::Finished);
    EXPECT_TRUE(result.pagesSaved);
    EXPECT_EQ(documents_.saved, 1);
    EXPECT_TRUE(ui_.questions.empty());
    EXPECT_NE(Log().find("\r\n1 pages are modified. They will now be saved to OneNote"), std::string::npos);
}

TEST_F(RunDriverTest, TwoPagesAskOnceWhenTheBoxIsTicked) {
    documents_.modified = 2;
    ui_.answer = {true, true};
    EXPECT_EQ(Run(u"$x = 1\n").outcome, RunOutcome::Finished);
    ASSERT_EQ(ui_.questions.size(), 1u);
    EXPECT_EQ(ToUtf8(ui_.questions[0]),
              "Tidy|The macro \"Tidy\" is attempting to modify multiple pages. You will not be able to undo this "
              "operation. Do you want to continue?|&Do not ask for this macro again in this session");
    EXPECT_EQ(documents_.saved, 1);
    // The progress window is hidden for the question and shown again after it.
    EXPECT_EQ(ui_.progressWindow.shows, 2);
    EXPECT_EQ(ui_.progressWindow.hides, 2);

    EXPECT_EQ(Run(u"$x = 2\n").outcome, RunOutcome::Finished);
    EXPECT_EQ(ui_.questions.size(), 1u);
    EXPECT_EQ(documents_.saved, 2);

    // Another macro is asked about on its own.
    Run(u"$x = 3\n", true, u"{id-2}");
    EXPECT_EQ(ui_.questions.size(), 2u);
}

TEST_F(RunDriverTest, TwoPagesAskAgainWithoutTheBox) {
    documents_.modified = 3;
    ui_.answer = {true, false};
    Run(u"$x = 1\n");
    Run(u"$x = 1\n");
    EXPECT_EQ(ui_.questions.size(), 2u);
    EXPECT_EQ(documents_.saved, 2);
}

TEST_F(RunDriverTest, RefusedConfirmationWritesNothing) {
    documents_.modified = 2;
    ui_.answer = {false, true};
    RunResult result = Run(u"$x = 1\n");
    EXPECT_EQ(result.outcome, RunOutcome::Refused);
    EXPECT_EQ(documents_.saved, 0);
    EXPECT_FALSE(driver_.MaySaveMultiplePages(u"{id-1}"));
    EXPECT_TRUE(Log().ends_with("\r\nUser did not allow saving multiple pages")) << Log();
}

TEST_F(RunDriverTest, ExitMacroWithoutSaving) {
    documents_.modified = 2;
    RunResult result = Run(u"$x = 1\nExitMacro(false)\n$x = 2\n");
    EXPECT_EQ(result.outcome, RunOutcome::Exited);
    EXPECT_EQ(documents_.finalized, 0);
    EXPECT_EQ(documents_.saved, 0);
    EXPECT_TRUE(ui_.questions.empty());
    EXPECT_EQ(ToUtf8(result.variables.Variable(u"x").Describe()), "1 (string)");
    EXPECT_TRUE(Log().ends_with("\r\nExitMacro called, exiting macro without saving changes")) << Log();
}

TEST_F(RunDriverTest, ExitMacroWithSaving) {
    documents_.modified = 1;
    RunResult result = Run(u"ExitMacro(true)\n");
    EXPECT_EQ(result.outcome, RunOutcome::Exited);
    EXPECT_EQ(documents_.saved, 1);
    EXPECT_NE(Log().find("\r\nExitMacro called, exiting macro after saving changes\r\n1 pages are modified."),
              std::string::npos);
}

TEST_F(RunDriverTest, CancelIsSilent) {
    documents_.modified = 1;
    ui_.progressWindow.cancel = true;
    RunResult result = Run(u"$x = 1\n");
    EXPECT_EQ(result.outcome, RunOutcome::Cancelled);
    EXPECT_TRUE(ui_.errors.empty());
    EXPECT_EQ(documents_.saved, 0);
    EXPECT_EQ(Log(), "\r\nRunning Macro \"Tidy\"");
    EXPECT_EQ(ui_.progressWindow.hides, 1);
}

TEST_F(RunDriverTest, CancelledDialogIsSilent) {
    RunResult result = Run(u"$d = DialogBox_Create(\"m\")\nDialogBox_AddTextBox($d, \"Name\", \"name\", \"\", true)\n"
                           u"DialogBox_Show($d)\n$x = 1\n");
    EXPECT_EQ(result.outcome, RunOutcome::Cancelled);
    EXPECT_EQ(ui_.dialogBoxes.shown, 1);
    EXPECT_TRUE(ui_.errors.empty());
    EXPECT_EQ(ToUtf8(result.variables.Variable(u"x").Describe()), "<empty>");
}

TEST_F(RunDriverTest, ErrorShownAndLogged) {
    documents_.modified = 1;
    RunResult result = Run(u"$x = 1 / 0\n");
    EXPECT_EQ(result.outcome, RunOutcome::Failed);
    EXPECT_EQ(ToUtf8(result.errorMessage), "Division by zero");
    ASSERT_EQ(ui_.errors.size(), 1u);
    EXPECT_EQ(ToUtf8(ui_.errors[0]), "Error: Division by zero");
    EXPECT_EQ(documents_.saved, 0);
    EXPECT_TRUE(Log().ends_with("\r\nError while running macro: Division by zero")) << Log();
}

TEST_F(RunDriverTest, ErrorsWithoutTextAndStrayBreaks) {
    struct Case {
        const char16_t* text;
        const char* message;
    };
    const Case cases[] = {
        {u"ForEach $x in 5\n  $y = 1\n", "Macro error (code 0xFFFFFFA0)"},
        {u"While 1\n  Break 2\n", "Break statement encountered without For or While at: Break 2"},
        {u"Continue\n", "Continue statement encountered without For or While at: Continue "},
        {u"Else\n", "Else without If"},
    };
    for (const Case& c : cases) {
        RunResult result = Run(c.text, false);
        EXPECT_EQ(result.outcome, RunOutcome::Failed);
        EXPECT_EQ(ToUtf8(result.errorMessage), c.message);
    }
    EXPECT_EQ(ui_.errors.size(), 4u);
}

// The object model writes its own lines into the run's log while the run lasts.
TEST_F(RunDriverTest, LogAnnouncedToTheObjectModel) {
    std::vector<LogSink*> announced;
    environment_.logOpened = [&](LogSink* log) {
        announced.push_back(log);
        if (log) log->Write(u"\r\nfrom the object model");
    };
    Run(u"$x = 1\n");
    ASSERT_EQ(announced.size(), 2u);
    EXPECT_NE(announced[0], nullptr);
    EXPECT_EQ(announced[1], nullptr);
    EXPECT_EQ(Log().rfind("\r\nfrom the object model\r\nRunning Macro", 0), 0u);

    announced.clear();
    Run(u"$x = 1\n", false);
    EXPECT_EQ(announced, (std::vector<LogSink*>{nullptr, nullptr}));
}

TEST_F(RunDriverTest, LoggingOffCreatesNoFile) {
    documents_.modified = 1;
    RunResult result = Run(u"$x = 1\n", false);
    EXPECT_EQ(result.outcome, RunOutcome::Finished);
    EXPECT_FALSE(std::filesystem::exists(logPath_));
}

TEST_F(RunDriverTest, UnknownMacroDoesNothing) {
    RunSettings settings{true, logPath_};
    RunResult result = driver_.runMacro(nullptr, settings, environment_);
    EXPECT_EQ(result.outcome, RunOutcome::NotFound);
    EXPECT_FALSE(std::filesystem::exists(logPath_));
    EXPECT_EQ(ui_.progressWindow.shows, 0);
}

TEST_F(RunDriverTest, LogTruncatedPerRun) {
    Run(u"$x = 1\n$y = 2\n$z = 3\n");
    const auto first = Log().size();
    Run(u"$x = 1\n");
    EXPECT_LT(Log().size(), first);
}

TEST_F(RunDriverTest, ExactLogOfSmallRun) {
    documents_.modified = 0;
    Run(u"// count\n$i = 2\nWhile $i > 0\n  $i -= 1\nIf $i == 0\n  Break\n");
    const std::string separator(72, '-');
    const std::string expected =
        "\r\nRunning Macro \"Tidy\""
        "\r\n" + separator + "\r\n// count"
        "\r\n" + separator + "\r\n($i = 2)"
        "\tEvaluating expression: ($i = 2)\r\n\tNew Value: 2 (string)\r\n\t\tValue: 2 (string)\r\n"
        "\r\n" + separator + "\r\nWhile ($i > 0)"
        "\tEvaluating expression: ($i > 0)\r\n\t\tValue: true (boolean)\r\n"
        "\r\n" + separator + "\r\n($i -= 1)"
        "\tEvaluating expression: ($i -= 1)\r\n\tNew Value: 1 (integer)\r\n\t\tValue: 1 (integer)\r\n"
        "\r\nWhile ($i > 0)"
        "\tEvaluating expression: ($i > 0)\r\n\t\tValue: true (boolean)\r\n"
        "\r\n" + separator + "\r\n($i -= 1)"
        "\tEvaluating expression: ($i -= 1)\r\n\tNew Value: 0 (integer)\r\n\t\tValue: 0 (integer)\r\n"
        "\r\nWhile ($i > 0)"
        "\tEvaluating expression: ($i > 0)\r\n\t\tValue: false (boolean)\r\n"
        "\r\n" + separator + "\r\nIf ($i == 0)"
        "\tEvaluating expression: ($i == 0)\r\n\t\tValue: true (boolean)\r\n"
        "\r\n\tCondition evaluated to true"
        "\r\n" + separator + "\r\nBreak "
        "\r\nError while running macro: Break statement encountered without For or While at: Break ";
    EXPECT_EQ(Log(), expected);
}

TEST_F(RunDriverTest, RunWithoutProgressWindowOrNotebook) {
    ui_.hasProgress = false;
    environment_.documents = nullptr;
    RunResult result = Run(u"$x = 1\n");
    EXPECT_EQ(result.outcome, RunOutcome::Finished);
    EXPECT_EQ(result.pagesModified, 0u);
    EXPECT_NE(Log().find("\r\n0 pages are modified."), std::string::npos);
    EXPECT_EQ(Log().find("They will"), std::string::npos);
}

}  // namespace
}  // namespace qm::test
