#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli_test_util.h"
#include "core/text.h"
#include "macros/macro_xml.h"

namespace qm::cli::testing {
namespace {

using TextFormCommands = ToolTest;

const fs::path kExamples = fs::path(QUILLMARK_SOURCE_DIR) / "examples" / "macros";

TEST_F(TextFormCommands, ExamplesAreCleanAndSurviveTheTripThroughXml) {
    int seen = 0;
    for (const auto& entry : fs::directory_iterator(kExamples)) {
        if (entry.path().extension() != ".qm") continue;
        ++seen;
        const std::string qm = entry.path().string();
        Result r = RunTool({"check", qm});
        EXPECT_EQ(r.code, 0) << r.out << r.err;
        EXPECT_EQ(r.out, qm + ": OK\n");

        ASSERT_EQ(RunTool({"convert", qm, File("m.xml")}).code, 0);
        const std::string xml = io::ReadFileBytes(File("m.xml"));
        // UTF-16LE without a byte order mark, the single-macro XML.
        ASSERT_GE(xml.size(), 4u);
        EXPECT_EQ(xml.substr(0, 4), std::string("<\0?\0", 4));
        EXPECT_NO_THROW(M2::ImportMacroXml(io::DecodeXmlBytes(xml)));

        r = RunTool({"convert", File("m.xml"), File("back.qm")});
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_EQ(io::ReadFileBytes(File("back.qm")), io::ReadFileBytes(entry.path())) << qm;
    }
    EXPECT_GE(seen, 2);
}

TEST_F(TextFormCommands, MacroListsNeedAChoiceWhenTheyHoldSeveral) {
    const std::string list = WriteFile(
        "macros2.xml",
        io::EncodeUtf16Le(u"<?xml version=\"1.0\" encoding=\"utf-16\"?><Macros>"
                          u"<Macro id=\"{A}\" name=\"First\" category=\"\" description=\"\" publishDate=\"\">"
                          u"<Expression><Var>a</Var></Expression></Macro>"
                          u"<Macro id=\"{B}\" name=\"Second\" category=\"\" description=\"\" publishDate=\"\">"
                          u"<Else/></Macro></Macros>"));
    Result r = RunTool({"convert", list, File("one.qm")});
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, list + " holds 2 macros: choose one with --macro ID|NAME\n  {A}\tFirst\n  {B}\tSecond\n");

    ASSERT_EQ(RunTool({"convert", list, File("one.qm"), "--macro", "Second"}).code, 0);
    EXPECT_EQ(io::ReadFileBytes(File("one.qm")), "#name Second\n#id {B}\nElse\n");
    ASSERT_EQ(RunTool({"convert", "--macro", "{A}", list, File("one.qm")}).code, 0);
    EXPECT_EQ(io::ReadFileBytes(File("one.qm")), "#name First\n#id {A}\n$a\n");

    r = RunTool({"convert", list, File("one.qm"), "--macro", "Third"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, list + ": There is no macro with the id or name \"Third\".\n");

    // A whole list is checked macro by macro, each finding at its path.
    r = RunTool({"check", list});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, list + ": Macros/Macro[2]/Else[1]: Else without If\n");
    EXPECT_EQ(RunTool({"check", list, "--macro", "First"}).out, list + ": OK\n");
}

TEST_F(TextFormCommands, CheckPrintsFindingsByLine) {
    const std::string qm = WriteFile("faults.qm", "$a = Nope()\nWhile 1\n  Break 2\n");
    Result r = RunTool({"check", qm});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, qm + ":1: Unknown function 'Nope'\n" + qm +
                         ":3: Break statement encountered without For or While at: Break 2\n");
}

TEST_F(TextFormCommands, ReadErrorsExitOneWithTheirPlace) {
    const std::string qm = WriteFile("bad.qm", "If 1\n  $a = = 2\n");
    Result r = RunTool({"check", qm});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, qm + ":2: Unexpected '=' (Assignment Operator)\r\nexpected (Variable), (Function) or end of "
                          "expression\n");
    EXPECT_EQ(RunTool({"convert", qm, File("out.xml")}).code, 1);
    EXPECT_FALSE(fs::exists(File("out.xml")));

    const std::string xml = WriteFile("bad.xml", "<?xml version=\"1.0\"?><Macro><If></Macro>");
    r = RunTool({"convert", xml, File("out.qm")});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err.rfind(xml + ": ", 0), 0u) << r.err;

    // A tree without a text form is refused, naming the file it came from.
    const std::string lines = WriteFile("lines.xml", "<Macro><Comment text=\"a&#10;b\"/></Macro>");
    r = RunTool({"convert", lines, File("out.qm")});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, lines + ": Macro/Comment[1] cannot be written in the text form: it holds a line break\n");

    r = RunTool({"check", File("missing.qm")});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("missing.qm"), std::string::npos);
}

TEST_F(TextFormCommands, UsageErrorsExitTwo) {
    EXPECT_EQ(RunTool({"convert", "a.qm"}).code, 2);
    EXPECT_EQ(RunTool({"check"}).code, 2);
    Result r = RunTool({"convert", "a.qm", "b.txt"});
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, "b.txt: expected a .qm (text form) or .xml file\n");
    EXPECT_EQ(RunTool({"check", "macro.doc"}).code, 2);
}

}  // namespace
}  // namespace qm::cli::testing
