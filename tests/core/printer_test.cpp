#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/parser.h"
#include "core/text.h"
#include "core/tree_util.h"

namespace qm {
namespace {

using tests::TreesEqual;

std::string Text(const M2::Expression& e) { return ToUtf8(PrintText(e)); }
std::string Text(const M2::ExpressionPtr& e) { return Text(*e); }

M2::ExpressionPtr Node(M2::Expression::Primary primary) {
    auto e = std::make_shared<M2::Expression>();
    e->primary = std::move(primary);
    return e;
}

M2::ExpressionPtr Var(std::u16string name) { return Node(M2::Var{std::move(name)}); }

M2::ExpressionPtr Unary(std::u16string op, M2::ExpressionPtr operand) {
    M2::UnaryOp u;
    u.SetName(std::move(op));
    u.operand = std::move(operand);
    return Node(std::move(u));
}

M2::ExpressionPtr WithProp(M2::ExpressionPtr e, std::u16string name) {
    e->members.emplace_back(M2::Prop{std::move(name)});
    return e;
}

// Printing then parsing gives the tree back, and the text is stable from then on.
void ExpectRoundTrip(const M2::ExpressionPtr& tree) {
    const std::u16string printed = PrintText(*tree);
    SCOPED_TRACE("printed: " + ToUtf8(printed));
    M2::ExpressionPtr again;
    ASSERT_NO_THROW(again = Parse(printed));
    EXPECT_TRUE(TreesEqual(tree, again));
    EXPECT_EQ(PrintText(*again), printed);
}

TEST(Printer, LiteralForms) {
    const struct {
        std::u16string text;
        std::string printed;
    } cases[] = {
        {u"12", "12"},
        {u"1.5", "1.5"},
        {u".5", ".5"},
        {u"true", "true"},
        {u"false", "false"},
        {u"True", "\"True\""},
        {u"", "\"\""},
        {u"1.2.3", "\"1.2.3\""},
        {u"a\"b\\c", "\"a\\\"b\\\\c\""},
        {u"line\r\nnext\tcol", "\"line\r\nnext\tcol\""},
        // Bare, the minus would read back as a unary operator.
        {u"-5", "\"-5\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.printed);
        const auto literal = M2::MakeLiteral(c.text);
        EXPECT_EQ(Text(literal), c.printed);
        ExpectRoundTrip(literal);
    }
}

TEST(Printer, StepsAndUnaryOperands) {
    const struct {
        M2::ExpressionPtr tree;
        std::string printed;
    } cases[] = {
        // A bare number would swallow the point of the property that follows.
        {WithProp(M2::MakeLiteral(u"1"), u"x"), "\"1\".x"},
        {WithProp(M2::MakeLiteral(u"true"), u"x"), "true.x"},
        {Unary(u"-", Var(u"a")), "-$a"},
        {Unary(u"!", Unary(u"!", Var(u"a"))), "!!$a"},
        {Unary(u"-", M2::MakeLiteral(u"1")), "-1"},
        {Unary(u"-", WithProp(Var(u"a"), u"b")), "-($a.b)"},
        {WithProp(Unary(u"-", Var(u"a")), u"b"), "-($a).b"},
        {WithProp(Unary(u"-", M2::MakeLiteral(u"1")), u"b"), "-(1).b"},
        {Unary(u"-", WithProp(Unary(u"-", Var(u"a")), u"b")), "-(-($a).b)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Text(c.tree), c.printed);
        ExpectRoundTrip(c.tree);
    }
    M2::BinaryOp sum;
    sum.SetName(u"+");
    sum.left = Var(u"a");
    sum.right = M2::MakeLiteral(u"1");
    const auto negatedSum = WithProp(Unary(u"-", Node(std::move(sum))), u"b");
    EXPECT_EQ(Text(negatedSum), "-($a + 1).b");
    ExpectRoundTrip(negatedSum);
}

TEST(Printer, ParsedExpressionsRoundTrip) {
    const std::u16string inputs[] = {
        u"1 + 2 * 3",
        u"$a = $b = $c ? f(1, \"x\") : -$d.e[2]",
        u"$a[\"k\"].b.c[$i + 1] &= \"\\\"quoted\\\" \\\\ path\"",
        u"!($a || $b) && -(1).x == +$c",
        u"--+-$a.b",
        u"-(-$a).b[0]",
        u"\"-12\" + \"12\" + \"1.\" + 1 .x + \"1.2.3\"",
        u"f(g(h($a ? 1 : 2)), ($b = 3), (1 ? 2 : 3) ? 4 : 5)",
        u"$ + $.x + $a. + $a.. + $a.[1]",
        u"\"\" & \"\t\r\n\" & \"tab\\tnew\\nline\"",
        u"DateTime_Now().Year % 4 != 0",
        u"$a +=1 -=2 *= 3 /= 4 %= 5 &&= 6 ||= 7",
        u"$a < 1 <= 2 > 3 >= 4 == 5 != 6",
    };
    for (const std::u16string& input : inputs) {
        SCOPED_TRACE(ToUtf8(input));
        ExpectRoundTrip(Parse(input));
    }
}

// The deepest trees the parser accepts must print, parse again and be destroyed without trouble.
TEST(Printer, DeepestTreesRoundTrip) {
    constexpr int kLevels = M2::kMaxExpressionDepth - 1;
    auto repeat = [](std::u16string_view piece) {
        std::u16string out;
        for (int i = 0; i < kLevels; ++i) out += piece;
        return out;
    };
    const std::u16string inputs[] = {
        u"1" + repeat(u" + 1"),
        repeat(u"$a = ") + u"1",
        repeat(u"1 + (") + u"1" + repeat(u")"),
        repeat(u"1 ? 2 : ") + u"3",
        repeat(u"-") + u"$a.b",
        repeat(u"-(") + u"$a" + repeat(u").x"),
        repeat(u"f(1, ") + u"$a" + repeat(u")"),
    };
    for (const std::u16string& input : inputs) {
        SCOPED_TRACE(ToUtf8(input.substr(0, 20)));
        M2::ExpressionPtr tree;
        ASSERT_NO_THROW(tree = Parse(input));
        ExpectRoundTrip(tree);
    }
}

TEST(Printer, SegmentsCarryTheirClass) {
    const auto segments = Print(*Parse(u"f($a.b, \"s\", 1, true)[-$c]"));
    const std::vector<std::pair<SegmentClass, std::string>> expected = {
        {SegmentClass::FunctionName, "f"},   {SegmentClass::Punctuation, "("},
        {SegmentClass::Variable, "$a"},      {SegmentClass::PropertyName, ".b"},
        {SegmentClass::Punctuation, ", "},   {SegmentClass::StringLiteral, "\"s\""},
        {SegmentClass::Punctuation, ", "},   {SegmentClass::NumericLiteral, "1"},
        {SegmentClass::Punctuation, ", "},   {SegmentClass::BooleanLiteral, "true"},
        {SegmentClass::Punctuation, ")[-"},  {SegmentClass::Variable, "$c"},
        {SegmentClass::Punctuation, "]"},
    };
    ASSERT_EQ(segments.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(segments[i].cls, expected[i].first) << i;
        EXPECT_EQ(ToUtf8(segments[i].text), expected[i].second) << i;
    }
}

TEST(Printer, MissingChildrenPrintAsEmpty) {
    // Trees read from elsewhere may lack a child; printing must not fail on them.
    M2::BinaryOp assign;
    assign.SetName(u"=");
    assign.left = Var(u"a");
    EXPECT_EQ(Text(Node(std::move(assign))), "($a = \"\")");
    EXPECT_EQ(Text(M2::Expression{}), "\"\"");
}

}  // namespace
}  // namespace qm
