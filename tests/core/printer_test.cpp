#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/parser.h"
#include "core/text.h"

namespace qm {
namespace {

std::string Text(const M2::ExpressionPtr& e) { return ToUtf8(PrintText(*e)); }

M2::ExpressionPtr Var(std::u16string name, std::u16string prop = u"-") {
    auto e = std::make_shared<M2::Expression>();
    e->primary = M2::Var{std::move(name)};
    if (prop != u"-") e->members.emplace_back(M2::Prop{std::move(prop)});
    return e;
}

M2::ExpressionPtr Negate(M2::ExpressionPtr operand, std::vector<std::u16string> props = {}) {
    M2::UnaryOp u;
    u.SetName(u"-");
    u.operand = std::move(operand);
    auto e = std::make_shared<M2::Expression>();
    e->primary = std::move(u);
    for (auto& prop : props) e->members.emplace_back(M2::Prop{std::move(prop)});
    return e;
}

// The printed text parses again and prints the same.
void ExpectStable(const std::u16string& printed) {
    M2::ExpressionPtr again;
    ASSERT_NO_THROW(again = Parse(printed)) << ToUtf8(printed);
    EXPECT_EQ(PrintText(*again), printed);
}

TEST(Printer, Forms) {
    auto numberWithProp = M2::MakeLiteral(u"1");
    numberWithProp->members.emplace_back(M2::Prop{u"x"});
    const struct {
        M2::ExpressionPtr tree;
        std::string printed;
    } cases[] = {
        {M2::MakeLiteral(u"1.5"), "1.5"},
        {M2::MakeLiteral(u"true"), "true"},
        {M2::MakeLiteral(u"True"), "\"True\""},
        {M2::MakeLiteral(u""), "\"\""},
        {M2::MakeLiteral(u"1.2.3"), "\"1.2.3\""},
        {M2::MakeLiteral(u"a\"b\\c\r\n\t"), "\"a\\\"b\\\\c\r\n\t\""},
        // Bare, these would read back as another tree: a unary minus, a number swallowing the point.
        {M2::MakeLiteral(u"-5"), "\"-5\""},
        {numberWithProp, "\"1\".x"},
        {Negate(Negate(Var(u"a"))), "--$a"},
        {Negate(Var(u"a", u"b")), "-($a.b)"},
        {Negate(Var(u"a"), {u"b"}), "-($a).b"},
        {Negate(Negate(Var(u"a"), {u"b"})), "-(-($a).b)"},
        // An unnamed property at the very end would not be read back without a closing character.
        {Var(u"a", u""), "($a.)"},
        {Negate(Var(u""), {u"b", u""}), "(-($).b.)"},
        // A missing child (only possible in trees from elsewhere) prints as the empty expression.
        {Negate(nullptr), "-\"\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Text(c.tree), c.printed);
        ExpectStable(PrintText(*c.tree));
    }
}

TEST(Printer, ParsedExpressionsPrintStably) {
    const std::u16string inputs[] = {
        u"\"12\" + \"true\" + \"a\\\"b\"",
        u"$a = $b = $c ? f(1, \"x\") : -$d.e[2]",
        u"!($a || $b) && -(1).x == +$c & --+-$a.b",
        u"\"-12\" + \"1.\" + 1 .x + \"1.2.3\" + $ + $.x + $a. + $a..y",
        u"f(g(h($a ? 1 : 2)), ($b = 3), (1 ? 2 : 3) ? 4 : 5)[0]",
        u"$a +=1 -=2 *= 3 /= 4 %= 5 &&= 6 ||= 7 &= \"\t\r\n\"",
    };
    for (const std::u16string& input : inputs) ExpectStable(PrintText(*Parse(input)));
    EXPECT_EQ(Text(Parse(u"\"12\" & \"a\\\"b\"")), "(12 & \"a\\\"b\")");
}

// The deepest trees the parser accepts must print, parse again and be destroyed without trouble.
TEST(Printer, DeepestTreesPrintStably) {
    const auto repeat = [](std::u16string_view piece) {
        std::u16string out;
        for (int i = 1; i < M2::kMaxExpressionDepth; ++i) out += piece;
        return out;
    };
    const std::u16string inputs[] = {
        u"1" + repeat(u" + 1"),
        repeat(u"1 + (") + u"1" + repeat(u")"),
        repeat(u"1 ? 2 : ") + u"3",
        repeat(u"-(") + u"$a" + repeat(u").x"),
        repeat(u"f(1, ") + u"$a" + repeat(u")"),
    };
    for (const std::u16string& input : inputs) ExpectStable(PrintText(*Parse(input)));
}

TEST(Printer, SegmentsCarryTheirClass) {
    using S = SegmentClass;
    const auto segments = Print(*Parse(u"f($a.b, \"s\", 1, true)[-$c]"));
    const std::vector<std::pair<S, std::string>> expected = {
        {S::FunctionName, "f"}, {S::Punctuation, "("},     {S::Variable, "$a"},       {S::PropertyName, ".b"},
        {S::Punctuation, ", "}, {S::StringLiteral, "\"s\""}, {S::Punctuation, ", "}, {S::NumericLiteral, "1"},
        {S::Punctuation, ", "}, {S::BooleanLiteral, "true"}, {S::Punctuation, ")[-"}, {S::Variable, "$c"},
        {S::Punctuation, "]"},
    };
    ASSERT_EQ(segments.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(segments[i].cls, expected[i].first) << i;
        EXPECT_EQ(ToUtf8(segments[i].text), expected[i].second) << i;
    }
}

}  // namespace
}  // namespace qm
