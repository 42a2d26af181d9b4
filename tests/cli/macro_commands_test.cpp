#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli_test_util.h"
#include "core/text.h"

namespace qm::cli::testing {
namespace {

const std::string kDecl = "<?xml version=\"1.0\" encoding=\"utf-16\"?>\r\n";

using MacroCommands = ToolTest;
using XmlRoundTrip = ToolTest;

std::string Utf16(const std::string& utf8) { return io::EncodeUtf16Le(FromUtf8(utf8)); }

const std::string kMacroText = kDecl +
    "<Macro id=\"m1\" name=\"Sort pages\" category=\"Pages\" description=\"Sorts &amp; more\" "
    "publishDate=\"2016-03-05T14:07:09.042Z\">\r\n"
    "  <Expression>\r\n"
    "    <Call name=\"Sort\">\r\n"
    "      <Arg>\r\n"
    "        <Var>pages</Var>\r\n"
    "      </Arg>\r\n"
    "    </Call>\r\n"
    "  </Expression>\r\n"
    "</Macro>";

TEST_F(MacroCommands, ImportListShowExportRemove) {
    EXPECT_EQ(RunTool({"macros", "list"}).out, "");
    EXPECT_FALSE(fs::exists(home));

    Result r = RunTool({"macros", "import", WriteFile("macro.xml", Utf16(kMacroText))});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "m1\tSort pages\tPages\n");
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(RunTool({"macros", "list"}).out, "m1\tSort pages\tPages\n");
    EXPECT_EQ(RunTool({"macros", "show", "Sort pages"}).out, kMacroText + "\n");
    EXPECT_EQ(RunTool({"macros", "export", "m1"}).out, kMacroText);

    const std::string exported = WriteFile("exported.xml", "");
    ASSERT_EQ(RunTool({"macros", "export", "Sort pages", exported}).code, 0);
    EXPECT_EQ(io::ReadFileBytes(exported), Utf16(kMacroText));

    r = RunTool({"macros", "remove", "m1"});
    EXPECT_EQ(r.out, "m1\tSort pages\tPages\n");
    EXPECT_EQ(RunTool({"macros", "list"}).out, "");
    EXPECT_EQ(RunTool({"macros", "import", exported}).code, 0);
    EXPECT_EQ(RunTool({"macros", "list"}).out, "m1\tSort pages\tPages\n");
    EXPECT_EQ(macros::MakeLoadCounter(home)->Read(), 3u);  // one save per change
}

TEST_F(MacroCommands, ImportingAListReplacesByIdAndGivesNewIds) {
    ASSERT_EQ(RunTool({"macros", "import", WriteFile("a.xml", "<Macro id=\"a\" name=\"Alpha\" />")}).code, 0);
    Result r = RunTool({"macros", "import",
                        WriteFile("list.xml", "<Macros><Macro name=\"Fresh\" /><Macro id=\"a\" name=\"A2\" /></Macros>")});
    ASSERT_EQ(r.code, 0) << r.err;
    ASSERT_EQ(r.out.size(), 46u + 6u) << r.out;  // a new id of 38 characters, then "a"
    EXPECT_EQ(RunTool({"macros", "list"}).out, "a\tA2\t\n" + r.out.substr(0, 46));
}

TEST_F(MacroCommands, NewerMacroIsImportedWithAWarningAndLoggingIsSwitched) {
    Result r = RunTool({"macros", "import", WriteFile("newer.xml", "<Macro id=\"n\" name=\"Next\" version=\"9\" />")});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.err,
              "This macro is from a newer version of Quillmark. It will be imported but may not work properly "
              "here.\r\n\r\nDo you want to download the latest version of Quillmark?\n");
    EXPECT_EQ(RunTool({"macros", "list"}).out, "n\tNext\t\n");

    EXPECT_EQ(RunTool({"macros", "logging", "on"}).out, "Macro logging is on.\n");
    const std::string logging = io::ReadFileBytes(home / "macros2.xml");
    EXPECT_NE(logging.find(Utf16("<Macros loggingEnabled=\"true\" loadState=\"2\">")), std::string::npos);
    EXPECT_EQ(RunTool({"macros", "logging", "off"}).out, "Macro logging is off.\n");
}

TEST_F(MacroCommands, ErrorsNameTheFileAndThePlace) {
    const std::string missing = (home.parent_path() / "no-such-file.xml").string();
    Result r = RunTool({"macros", "import", missing});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Cannot read \"" + missing + "\": cannot open the file for reading\n");

    const std::string bad = WriteFile("bad.xml", kDecl + "<Macro name=\"x\">\r\n  <If>\r\n</Macro>");
    r = RunTool({"macros", "import", bad});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.starts_with("Cannot read \"" + bad + "\": ")) << r.err;
    EXPECT_NE(r.err.find("(line 4, column "), std::string::npos) << r.err;

    r = RunTool({"macros", "show", "nothing"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "There is no macro with the id or name \"nothing\".\n");
    EXPECT_EQ(RunTool({"macros", "remove", "nothing"}).code, 1);
    EXPECT_FALSE(fs::exists(home));

    EXPECT_EQ(RunTool({"macros"}).code, 2);
    EXPECT_EQ(RunTool({"macros", "logging", "maybe"}).code, 2);
    EXPECT_EQ(RunTool({"xml"}).code, 2);
}

TEST_F(MacroCommands, UnreadableListStopsEveryCommandAndStaysAsItIs) {
    fs::create_directories(home);
    const std::string broken = Utf16(kDecl + "<Macros>\r\n  <Macro name=\"a\"\r\n</Macros>");
    io::WriteFileAtomically(home / "macros2.xml", broken);
    const std::string file = (home / "macros2.xml").string();

    Result r = RunTool({"macros", "list"});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.starts_with("Cannot read \"" + file + "\": ")) << r.err;
    EXPECT_NE(r.err.find("(line 4, column "), std::string::npos) << r.err;

    const std::string readError = r.err;
    r = RunTool({"macros", "import", WriteFile("macro.xml", kMacroText)});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "\"" + file + "\" could not be read, so it is left as it is and changes are not saved until it "
                                   "can be read.\r\n" + readError);
    EXPECT_EQ(RunTool({"macros", "logging", "on"}).code, 1);
    EXPECT_EQ(io::ReadFileBytes(file), broken);
    EXPECT_EQ(macros::MakeLoadCounter(home)->Read(), 0u);
}

TEST_F(XmlRoundTrip, ReadsAnyEncodingAndWritesUtf8) {
    const std::string list = kDecl +
        "<Macros display=\"flat\" compact=\"true\">\r\n"
        "  <Macro id=\"m\" name=\"\xC3\xA9t\xC3\xA9\" category=\"\" description=\"\" "
        "publishDate=\"00-00-00T00:00:00.000Z\" version=\"3\">\r\n"
        "    <Comment text=\"off\">\r\n"
        "      <Break />\r\n"
        "    </Comment>\r\n"
        "  </Macro>\r\n"
        "</Macros>";
    for (const std::string& bytes : {"\xFF\xFE" + Utf16(list), Utf16(list), list}) {
        Result r = RunTool({"xml", "roundtrip", WriteFile("list.xml", bytes)});
        EXPECT_EQ(r.code, 0) << r.err;
        EXPECT_EQ(r.out, list);
    }

    // A single macro, without what merely restates a default.
    Result r = RunTool({"xml", "roundtrip", WriteFile("single.xml", "<Macro name=\"s\" version=\"1\"><If collapsed=\"false\" /></Macro>")});
    EXPECT_EQ(r.out, kDecl + "<Macro name=\"s\" category=\"\" description=\"\" publishDate=\"00-00-00T00:00:00.000Z\">\r\n"
                             "  <If />\r\n</Macro>");

    const std::string other = WriteFile("other.xml", kDecl + "<Quillmark />");
    r = RunTool({"xml", "roundtrip", other});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Cannot read \"" + other + "\": Expected a \"Macro\" or \"Macros\" element, found \"Quillmark\" (line 2)\n");
}

}  // namespace
}  // namespace qm::cli::testing
