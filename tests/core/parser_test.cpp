#include <gtest/gtest.h>

#include <string>

#include "core/error.h"
#include "core/parser.h"
#include "core/text.h"

namespace qm {
namespace {

std::string Printed(std::u16string_view text) { return ToUtf8(PrintText(*Parse(text))); }

std::string ParseFailure(std::u16string_view text) {
    try {
        Parse(text);
    } catch (const ParseError& e) {
        return ToUtf8(e.message());
    }
    return "(parsed)";
}

std::u16string Repeat(std::u16string_view piece, int count) {
    std::u16string out;
    out.reserve(piece.size() * static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) out += piece;
    return out;
}

const std::string kTooDeep =
    "Expression is nested too deeply: more than 256 levels of parentheses, operators or accessors";

// The grouping of a parse, shown through the printer, which parenthesises every operator node.
TEST(Parser, GroupsStrictlyLeftToRight) {
    const struct {
        std::u16string input;
        std::string printed;
    } cases[] = {
        {u"1 + 2 * 3", "((1 + 2) * 3)"},
        {u"1 + (2 * 3)", "(1 + (2 * 3))"},
        {u"$a == 1 || $b == 2", "((($a == 1) || $b) == 2)"},
        {u"$a = $b = 3", "($a = ($b = 3))"},
        {u"$a += 1 - 2 * 3", "($a += ((1 - 2) * 3))"},
        {u"$c ? 1 : 2 + 3", "($c ? 1 : (2 + 3))"},
        {u"$c ? $a = 1 : 2 ? 3 : 4", "($c ? ($a = 1) : (2 ? 3 : 4))"},
        {u"$a + 1 ? 2 : 3", "(($a + 1) ? 2 : 3)"},
        // A unary operator takes one primary with its steps; after parentheses the steps are its own.
        {u"!$a == $b", "(!$a == $b)"},
        {u"-$a.b", "-($a.b)"},
        {u"-($a).b", "-($a).b"},
        {u"1 - -2 + 3", "((1 - -2) + 3)"},
        {u"((1 + 2)) * 3", "((1 + 2) * 3)"},
        {u"f(1,$a,  g(), $b = 3)", "f(1, $a, g(), ($b = 3))"},
        {u"$a[1].b[\"k\" & $i].c", "$a[1].b[(\"k\" & $i)].c"},
        {u"f().x[0]", "f().x[0]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ToUtf8(c.input));
        EXPECT_EQ(Printed(c.input), c.printed);
    }
}

TEST(Parser, FailureMessages) {
    const struct {
        std::u16string input;
        std::string message;
    } cases[] = {
        {u"", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"1 +", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"1 + \"abc", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"($a).b", "Unexpected 'b' (Property)\r\nexpected end of expression"},
        {u"($a)[1]", "Unexpected '[' (Open Square Bracket)\r\nexpected end of expression"},
        {u"1 2", "Unexpected '2' (Numeric Literal)\r\nexpected end of expression"},
        {u"$a | $b", "Unexpected '|' (Unrecognized Token)\r\nexpected end of expression"},
        {u"f(1,)", "Unexpected ')' (Close Parenthesis)\r\nexpected (Variable), (Function) or end of expression"},
        {u"*1", "Unexpected '*' (Multiplication Operator)\r\nexpected (Variable), (Function) or end of expression"},
        {u".x", "Unexpected 'x' (Property)\r\nexpected (Variable), (Function) or end of expression"},
        {u"$a[]", "Unexpected ']' (Close Square Bracket)\r\nexpected (Variable), (Function) or end of expression"},
        {u"$a %= %= 1",
         "Unexpected '%=' (Modulo AssignmentOperator)\r\nexpected (Variable), (Function) or end of expression"},
        {u"f", "Unexpected end of expression\r\nexpected (Open Parenthesis)"},
        {u"a | b", "Unexpected '|' (Unrecognized Token)\r\nexpected (Open Parenthesis)"},
        {u"f(1 2)", "Unexpected '2' (Numeric Literal)\r\nexpected (Close Parenthesis)"},
        {u"f(($a).b)", "Unexpected 'b' (Property)\r\nexpected (Close Parenthesis)"},
        {u"(1", "Unexpected end of expression\r\nexpected (Close Parenthesis)"},
        {u"$a[1)", "Unexpected ')' (Close Parenthesis)\r\nexpected (Close Square Bracket)"},
        {u"1 ? 2, 3", "Unexpected ',' (Comma)\r\nexpected (Ternary Conditional Operator)"},
        {u"1 ? 2 : 3 : 4", "Unexpected ':' (Ternary Conditional Operator)\r\nexpected end of expression"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ToUtf8(c.input));
        EXPECT_EQ(ParseFailure(c.input), c.message);
    }
}

TEST(Parser, ForMacroNamesTheExpression) {
    try {
        ParseForMacro(u"1 2");
        FAIL() << "parsed";
    } catch (const MacroError& e) {
        EXPECT_EQ(ToUtf8(e.message()),
                  "Unexpected '2' (Numeric Literal)\r\nexpected end of expression\r\nwhile parsing expression:\r\n\t1 2");
        EXPECT_EQ(e.code(), -96);
    }
    EXPECT_EQ(ToUtf8(PrintText(*ParseForMacro(u"$a+1"))), "($a + 1)");
}

// Nothing typed may nest deeper than the tree bound, however the nesting is written, and the
// refusal must come before the stack runs out.
TEST(Parser, DeepNestingIsRefused) {
    constexpr int kDeep = 100000;
    constexpr int kFar = 5000;  // well past every bound, and quicker
    const std::u16string inputs[] = {
        Repeat(u"(", kDeep) + u"1" + Repeat(u")", kDeep),
        Repeat(u"!-+", kDeep / 3) + u"$x",
        Repeat(u"$a = ", kDeep) + u"1",
        u"1" + Repeat(u"+1", kDeep),
        u"$a" + Repeat(u" & $a", kFar),
        Repeat(u"1 ? 1 : ", kFar) + u"1",
        Repeat(u"f(", kFar) + Repeat(u")", kFar),
        Repeat(u"$a[", kFar) + u"1" + Repeat(u"]", kFar),
        Repeat(u"-(", kFar) + u"$a" + Repeat(u").x", kFar),
    };
    for (const std::u16string& input : inputs) {
        SCOPED_TRACE(ToUtf8(input.substr(0, 20)));
        EXPECT_EQ(ParseFailure(input), kTooDeep);
    }
}

// The limit counts tree levels: a tree exactly at the bound is accepted, one more level is not.
TEST(Parser, NestingBoundIsExact) {
    constexpr int kMax = M2::kMaxExpressionDepth;
    const struct {
        std::u16string_view head, piece, tail, close;  // head, piece * n, tail, close * n: n + 1 levels
    } shapes[] = {
        {u"1", u"+1", u"", u""}, {u"", u"!", u"$x", u""}, {u"", u"$a = ", u"1", u""}, {u"", u"$a[", u"1", u"]"},
    };
    for (const auto& s : shapes) {
        const auto build = [&](int n) {
            return std::u16string(s.head) + Repeat(s.piece, n) + std::u16string(s.tail) + Repeat(s.close, n);
        };
        EXPECT_NO_THROW(Parse(build(kMax - 1))) << ToUtf8(s.piece);
        EXPECT_EQ(ParseFailure(build(kMax)), kTooDeep) << ToUtf8(s.piece);
    }
    // Parentheses add no tree level, so more of them than tree levels are accepted.
    EXPECT_EQ(Printed(Repeat(u"(", kMax + 100) + u"1" + Repeat(u")", kMax + 100)), "1");
}

}  // namespace
}  // namespace qm
