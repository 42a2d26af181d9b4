#include <gtest/gtest.h>

#include <string>
#include <variant>

#include "core/error.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/tree_util.h"

namespace qm {
namespace {

using tests::TreesEqual;

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
        {u"$x = 1 + 2", "($x = (1 + 2))"},
        {u"$a = $b = 3", "($a = ($b = 3))"},
        {u"$a += 1 - 2 * 3", "($a += ((1 - 2) * 3))"},
        {u"$a &&= $b || $c", "($a &&= ($b || $c))"},
        {u"$a = 1 + 2 & \"x\"", "($a = ((1 + 2) & \"x\"))"},
        {u"$c ? 1 : 2 + 3", "($c ? 1 : (2 + 3))"},
        {u"$c ? $a = 1 : 2", "($c ? ($a = 1) : 2)"},
        {u"1 ? 2 : 3 ? 4 : 5", "(1 ? 2 : (3 ? 4 : 5))"},
        {u"$a + 1 ? 2 : 3", "(($a + 1) ? 2 : 3)"},
        {u"!$a == $b", "(!$a == $b)"},
        {u"1 - -2 + 3", "((1 - -2) + 3)"},
        {u"--$a", "--$a"},
        {u"(((1)))", "1"},
        {u"((1 + 2)) * 3", "((1 + 2) * 3)"},
        {u"f()", "f()"},
        {u"f(1,$a,  \"x\", g(h()))", "f(1, $a, \"x\", g(h()))"},
        {u"f(1 + 2, $a = 3)", "f((1 + 2), ($a = 3))"},
        {u"$a[1].b[\"k\" & $i].c", "$a[1].b[(\"k\" & $i)].c"},
        {u"f().x[0]", "f().x[0]"},
        {u"\"abc\".Length", "\"abc\".Length"},
        {u"$", "$"},
        {u"$a.", "$a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ToUtf8(c.input));
        EXPECT_EQ(Printed(c.input), c.printed);
    }
}

TEST(Parser, UnaryTakesOnePrimaryWithItsAccessors) {
    // -$a.b negates the whole access: the steps belong to the operand.
    auto tree = Parse(u"-$a.b");
    ASSERT_TRUE(std::holds_alternative<M2::UnaryOp>(tree->primary));
    const auto& negation = std::get<M2::UnaryOp>(tree->primary);
    EXPECT_EQ(negation.op, M2::Operator::Subtract);
    EXPECT_TRUE(tree->members.empty());
    ASSERT_TRUE(std::holds_alternative<M2::Var>(negation.operand->primary));
    ASSERT_EQ(negation.operand->members.size(), 1u);

    // After a parenthesised operand the steps apply to the unary node itself.
    tree = Parse(u"-($a).b");
    ASSERT_TRUE(std::holds_alternative<M2::UnaryOp>(tree->primary));
    EXPECT_EQ(tree->members.size(), 1u);
    EXPECT_TRUE(std::get<M2::UnaryOp>(tree->primary).operand->members.empty());

    // The ! binds to $a alone; == then takes the negation as its left side.
    tree = Parse(u"!$a == $b");
    ASSERT_TRUE(std::holds_alternative<M2::BinaryOp>(tree->primary));
    const auto& equal = std::get<M2::BinaryOp>(tree->primary);
    EXPECT_EQ(equal.op, M2::Operator::Equal);
    EXPECT_TRUE(std::holds_alternative<M2::UnaryOp>(equal.left->primary));
}

TEST(Parser, LiteralsKeepOnlyTheirText) {
    // A string literal that reads as a number or boolean is the same tree as that literal.
    EXPECT_TRUE(TreesEqual(Parse(u"\"12\""), Parse(u"12")));
    EXPECT_TRUE(TreesEqual(Parse(u"\"true\""), Parse(u"true")));
    EXPECT_FALSE(TreesEqual(Parse(u"\"True\""), Parse(u"true")));
    auto tree = Parse(u"\"a\\\"b\"");
    EXPECT_TRUE(tree->IsLiteral());
    EXPECT_EQ(tree->text(), u"a\"b");
    EXPECT_TRUE(Parse(u"1.5")->literal().isNumeric);
    EXPECT_FALSE(Parse(u"1.2.3")->literal().isNumeric);
}

TEST(Parser, FailureMessages) {
    const struct {
        std::u16string input;
        std::string message;
    } cases[] = {
        {u"", "Unexpected end of expression\r\nexpected (Expression)"},
        {u" \r\n", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"\"abc", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"1 +", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"1 + \"abc", "Unexpected end of expression\r\nexpected (Expression)"},
        {u"($a).b", "Unexpected 'b' (Property)\r\nexpected end of expression"},
        {u"($a)[1]", "Unexpected '[' (Open Square Bracket)\r\nexpected end of expression"},
        {u"1 2", "Unexpected '2' (Numeric Literal)\r\nexpected end of expression"},
        {u"$a | $b", "Unexpected '|' (Unrecognized Token)\r\nexpected end of expression"},
        {u"$a : 1", "Unexpected ':' (Ternary Conditional Operator)\r\nexpected end of expression"},
        {u"f(1) )", "Unexpected ')' (Close Parenthesis)\r\nexpected end of expression"},
        {u"f(1,)", "Unexpected ')' (Close Parenthesis)\r\nexpected (Variable), (Function) or end of expression"},
        {u"*1", "Unexpected '*' (Multiplication Operator)\r\nexpected (Variable), (Function) or end of expression"},
        {u".x", "Unexpected 'x' (Property)\r\nexpected (Variable), (Function) or end of expression"},
        {u"$a[]", "Unexpected ']' (Close Square Bracket)\r\nexpected (Variable), (Function) or end of expression"},
        {u"$a %= %= 1",
         "Unexpected '%=' (Modulo AssignmentOperator)\r\nexpected (Variable), (Function) or end of expression"},
        {u"#", "Unexpected '#' (Unrecognized Token)\r\nexpected (Variable), (Function) or end of expression"},
        {u"f", "Unexpected end of expression\r\nexpected (Open Parenthesis)"},
        {u"f 1", "Unexpected '1' (Numeric Literal)\r\nexpected (Open Parenthesis)"},
        {u"a | b", "Unexpected '|' (Unrecognized Token)\r\nexpected (Open Parenthesis)"},
        {u"True", "Unexpected end of expression\r\nexpected (Open Parenthesis)"},
        {u"f(1 2)", "Unexpected '2' (Numeric Literal)\r\nexpected (Close Parenthesis)"},
        {u"f(($a).b)", "Unexpected 'b' (Property)\r\nexpected (Close Parenthesis)"},
        {u"f(1", "Unexpected end of expression\r\nexpected (Close Parenthesis)"},
        {u"(1", "Unexpected end of expression\r\nexpected (Close Parenthesis)"},
        {u"(1 2)", "Unexpected '2' (Numeric Literal)\r\nexpected (Close Parenthesis)"},
        {u"$a[1", "Unexpected end of expression\r\nexpected (Close Square Bracket)"},
        {u"$a[1)", "Unexpected ')' (Close Parenthesis)\r\nexpected (Close Square Bracket)"},
        {u"1 ? 2", "Unexpected end of expression\r\nexpected (Ternary Conditional Operator)"},
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
    const std::u16string inputs[] = {
        Repeat(u"(", kDeep) + u"1" + Repeat(u")", kDeep),
        Repeat(u"(", kDeep),
        Repeat(u"!", kDeep) + u"$x",
        Repeat(u"!-+", kDeep / 3) + u"$x",
        Repeat(u"$a = ", kDeep) + u"1",
        u"1" + Repeat(u"+1", kDeep),
        u"$a" + Repeat(u" & $a", kDeep),
        Repeat(u"1 ? 1 : ", kDeep) + u"1",
        Repeat(u"1 ? ", kDeep) + u"1",
        Repeat(u"f(", kDeep) + Repeat(u")", kDeep),
        Repeat(u"$a[", kDeep) + u"1" + Repeat(u"]", kDeep),
        Repeat(u"-(", kDeep) + u"$a" + Repeat(u").x", kDeep),
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
        std::u16string_view piece;  // one more tree level each
        std::u16string_view head;
        std::u16string_view tail;
        std::u16string_view close;  // repeated after the tail
    } shapes[] = {
        {u"+1", u"1", u"", u""},            // left-deep chain
        {u"!", u"", u"$x", u""},            // unary chain
        {u"$a = ", u"", u"1", u""},         // right-deep assignments
        {u"f(", u"", u"1", u")"},           // nested calls
        {u"$a[", u"", u"1", u"]"},          // nested indexes
    };
    for (const auto& s : shapes) {
        SCOPED_TRACE(ToUtf8(s.piece));
        const auto build = [&](int levels) {
            if (s.head.empty()) return Repeat(s.piece, levels) + std::u16string(s.tail) + Repeat(s.close, levels);
            return std::u16string(s.head) + Repeat(s.piece, levels);
        };
        EXPECT_NO_THROW(Parse(build(kMax - 1)));
        EXPECT_EQ(ParseFailure(build(kMax)), kTooDeep);
    }
    // Parentheses add no tree level, so far more of them than tree levels are accepted.
    EXPECT_EQ(Printed(Repeat(u"(", kMax + 100) + u"1" + Repeat(u")", kMax + 100)), "1");
}

}  // namespace
}  // namespace qm
