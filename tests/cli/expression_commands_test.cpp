#include <gtest/gtest.h>

#include "cli_test_util.h"

namespace qm::cli::testing {
namespace {

TEST(EvalCommand, SharesOneScopeAndDescribesEachValue) {
    Result r = RunTool({"eval", "$x = 5", "$x + 2", "$x & 1", "$never"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "5 (string)\n7 (integer)\n51 (string)\n<empty>\n");
    EXPECT_EQ(r.err, "");
}

TEST(EvalCommand, StopsAtTheFirstErrorKeepingEarlierOutput) {
    Result r = RunTool({"eval", "1 + 1", "1 / 0", "2"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.out, "2 (integer)\n");
    EXPECT_EQ(r.err, "Division by zero\n");
}

TEST(EvalCommand, ParseErrorNamesTheExpression) {
    Result r = RunTool({"eval", "1 2"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err,
              "Unexpected '2' (Numeric Literal)\r\nexpected end of expression\r\nwhile parsing expression:\r\n\t1 2\n");
}

TEST(ParseCommand, PrintsTheTreeBackFullyParenthesised) {
    Result r = RunTool({"parse", "$a == 1 || $b == 2"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "((($a == 1) || $b) == 2)\n");

    r = RunTool({"parse", "f(1,)"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Unexpected ')' (Close Parenthesis)\r\nexpected (Variable), (Function) or end of expression\n");
}

TEST(TokensCommand, OneLinePerTokenWithKindNameAndText) {
    Result r = RunTool({"tokens", "$a+=1"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "Variable\ta\nAddition Assignment Operator\t+=\nNumeric Literal\t1\n");
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
