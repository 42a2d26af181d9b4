// quillmark run and quillmark functions, over a per-user folder of the test's own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "cli_test_util.h"
#include "core/text.h"
#include "macros/macro_store.h"
#include "macros/text_form.h"

namespace qm::cli::testing {
namespace {

using RunCommand = ToolTest;

TEST_F(RunCommand, RunsTextFormAndPrintsVariables) {
    const std::string file = WriteFile("count.qm", "$n = 3\nWhile $n > 0\n  $n -= 1\n$list = Array(\"a\")\n");
    Result r = RunTool({"run", file, "--vars"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "$list = Array of size (1):\n\t[0]: a (string)\n$n = 0 (integer)\n");
    EXPECT_EQ(r.err, "");
}

TEST_F(RunCommand, ExitCodesByOutcome) {
    struct Case {
        const char* text;
        std::vector<std::string> extra;
        int code;
        const char* err;
    };
    const Case cases[] = {
        {"$x = 1 / 0\n", {}, 1, "Error while running macro: Division by zero\n"},
        {"ExitMacro(false)\n$x = 1\n", {}, 0, ""},
        {"$d = DialogBox_Create(\"q\")\nDialogBox_AddTextBox($d, \"Name\", \"name\", \"\", true)\nDialogBox_Show($d)\n",
         {},
         3,
         "The dialog box asks for 'name' (text box) and no one can answer it here: pass --answer name=VALUE\n"},
        {"$d = DialogBox_Create(\"q\")\nDialogBox_AddTextBox($d, \"Name\", \"name\", \"\", true)\nDialogBox_Show($d)\n"
         "$x = $d.controls[\"name\"]\n",
         {"--answer", "name=Ada", "--vars"},
         0,
         ""},
        {"$x = 1\n", {"--answer", "novalue"}, 2, "--answer expects NAME=VALUE, not 'novalue'\n"},
        // Without --notebook the run works on the working copy of the sample notebook.
        {"$x = GetCurrentPage()\n", {}, 0, ""},
    };
    int index = 0;
    for (const Case& c : cases) {
        std::vector<std::string> args{"run", WriteFile("case" + std::to_string(++index) + ".qm", c.text)};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        const Result r = RunTool(args);
        EXPECT_EQ(r.code, c.code) << c.text;
        EXPECT_EQ(r.err, c.err) << c.text;
    }
}

TEST_F(RunCommand, LogOptionWritesTheLog) {
    const std::string file = WriteFile("tidy.qm", "#name Tidy\n// start\n$x = 1 / 0\n");
    const std::string log = File("run.log");
    Result r = RunTool({"run", file, "--log", log});
    EXPECT_EQ(r.code, 1);
    const std::string text = io::ReadFileBytes(log);
    EXPECT_EQ(text.rfind("\r\nRunning Macro \"Tidy\"\r\n" + std::string(72, '-') + "\r\n// start\r\n", 0), 0u) << text;
    EXPECT_EQ(text.substr(text.size() - 45), "\r\nError while running macro: Division by zero");
    EXPECT_FALSE(fs::exists(home / "macroLog.txt"));
}

TEST_F(RunCommand, StoredMacroByNameWithStoreLogging) {
    macros::MacroStore store(home);
    std::shared_ptr<M2::Macro> macro = M2::ReadTextForm(u"#name Stored\n$x = 5 + 5\n", "stored.qm");
    store.AddOrReplace(macro);
    store.Modify([](M2::Macros& list) { list.loggingEnabled = true; });

    Result r = RunTool({"run", "Stored", "--vars"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "$x = 10 (integer)\n");
    EXPECT_EQ(io::ReadFileBytes(home / "macroLog.txt").rfind("\r\nRunning Macro \"Stored\"", 0), 0u);

    Result missing = RunTool({"run", "Missing"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err.rfind("There is no macro with the id or name \"Missing\". (in ", 0), 0u) << missing.err;
}

TEST_F(RunCommand, MacroListFileNeedsAChoice) {
    const std::string list = WriteFile("list.xml",
                                   "<?xml version=\"1.0\"?><Macros><Macro id=\"a\" name=\"First\"><Expression>"
                                   "<BinaryOp name=\"=\"><Left><Var>x</Var></Left><Right>1</Right></BinaryOp>"
                                   "</Expression></Macro><Macro id=\"b\" name=\"Second\"><Expression>"
                                   "<BinaryOp name=\"=\"><Left><Var>x</Var></Left><Right>2</Right></BinaryOp>"
                                   "</Expression></Macro></Macros>");
    Result ambiguous = RunTool({"run", list});
    EXPECT_EQ(ambiguous.code, 2);
    EXPECT_EQ(ambiguous.err.rfind(list + " holds 2 macros: choose one with --macro ID|NAME\n", 0), 0u) << ambiguous.err;

    Result chosen = RunTool({"run", list, "--macro", "Second", "--vars"});
    EXPECT_EQ(chosen.code, 0) << chosen.err;
    EXPECT_EQ(chosen.out, "$x = 2 (string)\n");
}

TEST_F(RunCommand, UnreadableFiles) {
    Result missing = RunTool({"run", File("absent.qm")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_FALSE(missing.err.empty());

    const std::string bad = WriteFile("bad.qm", "$x = (1\n");
    Result unreadable = RunTool({"run", bad});
    EXPECT_EQ(unreadable.code, 1);
    EXPECT_EQ(unreadable.err.rfind(bad + ":1", 0), 0u) << unreadable.err;
}

TEST(FunctionsCommand, ListAndReference) {
    Result all = RunTool({"functions"});
    EXPECT_EQ(all.code, 0);
    EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 55);
    EXPECT_NE(all.out.find("\nArray_Join(array, glue) -> String\n"), std::string::npos);

    Result one = RunTool({"functions", "String_Length"});
    EXPECT_EQ(one.code, 0);
    EXPECT_EQ(one.out,
              "String_Length(string) -> Numeric\nReturns the length of the given string\nParameters:\n"
              "  string (String): String return the length of\n");

    Result none = RunTool({"functions", "string_length"});
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.err, "Unknown function 'string_length'\n");
}

TEST(EvalCommand, UsesTheBuiltIns) {
    Result r = RunTool({"eval", "$a = Array(1, 2)", "Array_Length($a) + String_Length(\"abc\")"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Array of size (2):\r\n\t[0]: 1 (string)\r\n\t[1]: 2 (string)\n5 (integer)\n");
}

}  // namespace
}  // namespace qm::cli::testing
