#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli_test_util.h"

namespace qm::cli::testing {
namespace {

const std::string kWeeklySync = "{7D4E2A10-91C3-4B5E-8F26-1A9C3E5B7D02}{1}{E19551348720312895214720176823459981024610301}";
const fs::path kSample = fs::path(QUILLMARK_SOURCE_DIR) / "examples" / "notebook";

using NotebookCommands = ToolTest;

TEST_F(NotebookCommands, ShowListsTheWorkingCopyMadeFromTheSampleOnFirstUse) {
    const std::string sampleBefore = io::ReadFileBytes(kSample / "hierarchy.xml");
    Result r = RunTool({"notebook", "show"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(fs::exists(home / "notebook" / "hierarchy.xml"));
    EXPECT_EQ(r.out.substr(0, r.out.find("Section group")),
              "Notebook: Work  {2F1B6C1E-3A52-4C8F-9E0A-6B1D7C4E5A01}{1}{B0} (current)\n"
              "  Section: Meetings  {7D4E2A10-91C3-4B5E-8F26-1A9C3E5B7D02}{1}{B0} (current)\n"
              "    Page: Weekly team sync  " + kWeeklySync + " (current)\n"
              "      Page: Notes from 3 April  {7D4E2A10-91C3-4B5E-8F26-1A9C3E5B7D02}{1}"
              "{E19551348720312895214720176823459981024610302}\n"
              "    Page: Quarterly planning  {7D4E2A10-91C3-4B5E-8F26-1A9C3E5B7D02}{1}"
              "{E19551348720312895214720176823459981024610303} (unread)\n  ");
    EXPECT_NE(r.out.find("    Section: Archive 2023  {D1A7C645-2E8F-4B3A-9C5D-6F0E8A2B3C05}{1}{B0} (read-only)\n"),
              std::string::npos);
    EXPECT_EQ(io::ReadFileBytes(kSample / "hierarchy.xml"), sampleBefore);
}

TEST_F(NotebookCommands, ShowPrintsAPageAsReadableText) {
    Result r = RunTool({"notebook", "show", kWeeklySync});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out,
              "Page: Weekly team sync  " + kWeeklySync + " (current)\n"
              "  Title: Weekly team sync\n"
              "  Outline\n"
              "    Agenda\n"
              "      1. Status of the website relaunch\n"
              "      2. Budget for Q2\n"
              "      3. Any other business\n"
              "    Action items\n"
              "    [To Do, done] Send the minutes to the team\n"
              "    [To Do] Book the room for the planning day\n"
              "    [Important] Release date moves to 22 April\n"
              "    Table: 3 columns, 3 rows\n"
              "      | Owner | Task | Due |\n"
              "      | Jonas | Update the project plan | 10 Apr |\n"
              "      | Priya | Collect the translations & check the German texts | 17 Apr |\n"
              "  Outline\n"
              "    Attendees\n"
              "      \xE2\x80\xA2 Anna Berg\n"
              "      \xE2\x80\xA2 Jonas M\xC3\xBCller\n"
              "      \xE2\x80\xA2 Priya Nair\n");
    r = RunTool({"notebook", "show", "{0A4D9E78-8C3F-4E1A-B25D-9C8E3F1B6F08}{1}{E19551348720312895214720176823459981024610308}"});
    EXPECT_NE(r.out.find("    Flights: TP 1325, 14 May, 07:10 from BER\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("  Kept as read: FutureObject\n"), std::string::npos) << r.out;
}

TEST_F(NotebookCommands, ShowRefusesWhatItCannotFind) {
    Result r = RunTool({"notebook", "show", "{nope}"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "No notebook, section group, section or page has the ID \"{nope}\"\n");
    const fs::path empty = home / "empty";
    fs::create_directories(empty);
    r = RunTool({"notebook", "show", "--notebook", empty.string()});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "\"" + empty.string() + "\" is not a notebook folder: it has no hierarchy.xml\n");
}

TEST_F(NotebookCommands, ResetRestoresTheSample) {
    ASSERT_EQ(RunTool({"notebook", "show"}).code, 0);
    io::WriteFileAtomically(home / "notebook" / "hierarchy.xml", "<broken");
    EXPECT_EQ(RunTool({"notebook", "show"}).code, 1);
    Result r = RunTool({"notebook", "reset"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "The working notebook in \"" + (home / "notebook").string() + "\" is the sample notebook again.\n");
    EXPECT_EQ(io::ReadFileBytes(home / "notebook" / "hierarchy.xml"), io::ReadFileBytes(kSample / "hierarchy.xml"));
    EXPECT_EQ(RunTool({"notebook", "show"}).code, 0);
}

TEST_F(NotebookCommands, GenerateWritesASyntheticFolderThatShowReads) {
    const fs::path dir = home / "generated";
    Result r = RunTool({"notebook", "generate", dir.string(), "--notebooks", "2", "--sections", "2", "--pages", "3",
                        "--paragraphs", "4"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Wrote 2 notebooks, 4 sections and 12 pages to \"" + dir.string() + "\".\n");
    r = RunTool({"notebook", "show", "--notebook", dir.string()});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(r.out.starts_with("Notebook: Notebook 1  {00010000-0000-4000-8000-000000000000}{1}{B0} (current)\n"))
        << r.out;

    r = RunTool({"notebook", "generate", dir.string()});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "\"" + dir.string() + "\" is not empty: choose a new or empty folder\n");
    r = RunTool({"notebook", "generate", (home / "big").string(), "--notebooks", "1000", "--sections", "1000"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "That is more than 100000 pages: ask for fewer\n");
    EXPECT_EQ(RunTool({"notebook", "generate", (home / "x").string(), "--pages", "0"}).code, 2);
    EXPECT_EQ(RunTool({"notebook"}).code, 2);
}

}  // namespace
}  // namespace qm::cli::testing
