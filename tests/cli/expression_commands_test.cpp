#include <gtest/gtest.h>

#include "cli_test_util.h"

namespace qm::cli::testing {
namespace {

// Each command line with its exit code and the whole of what it prints.
TEST(ExpressionCommands, PrintValuesTreesAndTokens) {
    const struct {
        std::vector<std::string> args;
        int code;
        std::string out, err;
    } cases[] = {
        // eval shares one scope, describes each value and stops at the first error.
        {{"eval", "$x = 5", "$x + 2", "$x & 1", "$never"}, 0, "5 (string)\n7 (integer)\n51 (string)\n<empty>\n", ""},
        {{"eval", "1 + 1", "1 / 0", "2"}, 1, "2 (integer)\n", "Division by zero\n"},
        {{"eval", "1 2"}, 1, "",
         "Unexpected '2' (Numeric Literal)\r\nexpected end of expression\r\nwhile parsing expression:\r\n\t1 2\n"},
        // parse prints the tree back fully parenthesised.
        {{"parse", "$a == 1 || $b == 2"}, 0, "((($a == 1) || $b) == 2)\n", ""},
        {{"parse", "f(1,)"}, 1, "",
         "Unexpected ')' (Close Parenthesis)\r\nexpected (Variable), (Function) or end of expression\n"},
        // tokens prints one line per token: kind name, then text.
        {{"tokens", "$a+=1"}, 0, "Variable\ta\nAddition Assignment Operator\t+=\nNumeric Literal\t1\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args[0] + " " + c.args[1]);
        const Result r = RunTool(c.args);
        EXPECT_EQ(r.code, c.code);
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err, c.err);
    }
}

TEST(CommandLine, UsageErrorsExitWithTwo) {
    EXPECT_EQ(RunTool({}).code, 2);
    EXPECT_EQ(RunTool({"frobnicate"}).code, 2);
    Result r = RunTool({"parse"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("Usage"), std::string::npos) << r.err;
    EXPECT_EQ(RunTool({"eval", "--help"}).code, 0);
}

}  // namespace
}  // namespace qm::cli::testing
