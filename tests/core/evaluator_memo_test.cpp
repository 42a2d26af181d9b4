// What the evaluator remembers between evaluations must never change a result: a variable node
// evaluated in several scopes, scopes that are copies of each other, concatenation chains that
// extend their own text, integer compound assignments computed in place, array keys counted up.
#include <gtest/gtest.h>

#include <string>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/parser.h"
#include "core/text.h"

namespace qm {
namespace {

std::string Describe(const MacroValue& value) { return ToUtf8(value.Describe()); }

MacroValue EvalIn(MacroScope& scope, const M2::Expression& expression) {
    Evaluator evaluator(scope);
    return evaluator.Evaluate(expression);
}

TEST(EvaluatorMemo, OneVariableNodeReadInScopesThatPlaceItDifferently) {
    const M2::ExpressionPtr read = Parse(u"$x");
    const M2::ExpressionPtr add = Parse(u"$x += 1");
    MacroScope first;
    first.Variable(u"x") = MacroValue(std::int32_t{10});
    MacroScope second;
    second.Variable(u"a") = MacroValue(u"a");
    second.Variable(u"b") = MacroValue(u"b");
    second.Variable(u"x") = MacroValue(std::int32_t{20});
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Describe(EvalIn(first, *read)), std::to_string(10 + round) + " (integer)");
        EXPECT_EQ(Describe(EvalIn(second, *read)), std::to_string(20 + round) + " (integer)");
        EvalIn(first, *add);
        EvalIn(second, *add);
    }
    EXPECT_EQ(Describe(second.Variable(u"a")), "a (string)");
    EXPECT_EQ(Describe(second.Variable(u"b")), "b (string)");
}

TEST(EvaluatorMemo, CopiedAndMovedScopesAreScopesOfTheirOwn) {
    const M2::ExpressionPtr assign = Parse(u"$late = 5");
    MacroScope original;
    original.Variable(u"a") = MacroValue(std::int32_t{1});
    MacroScope copy(original);
    copy.Variable(u"other") = MacroValue(u"kept");  // the next position in the copy
    EvalIn(original, *assign);                      // the same position in the original
    EvalIn(copy, *assign);
    EXPECT_EQ(Describe(copy.Variable(u"other")), "kept (string)");
    EXPECT_EQ(Describe(copy.Variable(u"late")), "5 (string)");

    // (A copy shares the values of the variables it copied; new variables are its own.)
    MacroScope assigned;
    assigned = original;
    assigned.Variable(u"x") = MacroValue(u"x");
    const M2::ExpressionPtr fresh = Parse(u"$fresh = 6");
    EvalIn(original, *fresh);
    EvalIn(assigned, *fresh);
    EXPECT_EQ(Describe(assigned.Variable(u"x")), "x (string)");
    EXPECT_EQ(Describe(assigned.Variable(u"fresh")), "6 (string)");
    EXPECT_EQ(original.variables().size(), 3u);
    EXPECT_EQ(assigned.variables().size(), 4u);

    MacroScope moved(std::move(copy));
    moved.Variable(u"more") = MacroValue(u"more");
    EvalIn(moved, *Parse(u"$later = 7"));
    EvalIn(original, *Parse(u"$later = 8"));
    EXPECT_EQ(Describe(moved.Variable(u"more")), "more (string)");
    EXPECT_EQ(Describe(moved.Variable(u"later")), "7 (string)");
    EXPECT_EQ(Describe(original.Variable(u"later")), "8 (string)");
}

TEST(EvaluatorMemo, ConcatenationChainsBuildTheirText) {
    MacroScope scope;
    scope.Variable(u"n") = MacroValue(std::int32_t{7});
    scope.Variable(u"s") = MacroValue(u"mid");
    scope.Variable(u"list") = MacroValue(std::make_shared<MacroArray>());
    EXPECT_EQ(Describe(EvalIn(scope, *Parse(u"\"<\" & $n & \">\" & 2.5 & $s & $never & true"))),
              "<7>2.5midtrue (string)");
    // The left side of the outer "&" is the inner result; the variable itself is not extended.
    EXPECT_EQ(Describe(EvalIn(scope, *Parse(u"$s & \"!\" & \"?\""))), "mid!? (string)");
    EXPECT_EQ(Describe(scope.Variable(u"s")), "mid (string)");
    try {
        EvalIn(scope, *Parse(u"\"a\" & \"b\" & $list"));
        ADD_FAILURE() << "an array has no text";
    } catch (const MacroError& e) {
        EXPECT_EQ(ToUtf8(e.message()), "'&' operator cannot use Array of size (0) as a String");
    }
}

TEST(EvaluatorMemo, IntegerCompoundAssignmentsWrapAndDivideLikeTheOperators) {
    MacroScope scope;
    const auto run = [&scope](std::u16string_view text) { return Describe(EvalIn(scope, *Parse(text))); };
    run(u"$x = 2147483647");
    run(u"$x = $x + 0");  // an integer now, not the literal's text
    EXPECT_EQ(run(u"$x += 1"), "-2147483648 (integer)");
    EXPECT_EQ(run(u"$x -= 1"), "2147483647 (integer)");
    EXPECT_EQ(run(u"$x *= 2"), "-2 (integer)");
    EXPECT_EQ(run(u"$x += 1.5"), "-0.5 (decimal)");
    EXPECT_EQ(run(u"-7 / 2"), "-3 (integer)");
    EXPECT_EQ(run(u"-7 % 2"), "-1 (integer)");
    run(u"$min = -2147483647 - 1");
    EXPECT_EQ(run(u"$min / -1"), "-2147483648 (integer)");
    EXPECT_EQ(run(u"$min % -1"), "0 (integer)");
    EXPECT_EQ(run(u"$min / 2"), "-1073741824 (integer)");
    EXPECT_THROW(run(u"7 / 0"), MacroError);
    EXPECT_THROW(run(u"7 % 0"), MacroError);
}

TEST(EvaluatorMemo, AppendedElementsAreKeyedByTheirIndex) {
    MacroArray array;
    for (std::int32_t i = 0; i < 1001; ++i) array.PushBack(MacroValue(i));
    for (std::int32_t i = 0; i < 1001; ++i) {
        const std::u16string key = IntegerText(i);
        ASSERT_EQ(array.elements()[static_cast<std::size_t>(i)].key, key);
        ASSERT_EQ(array.IndexOf(key), static_cast<std::size_t>(i));
    }
    EXPECT_TRUE(array.dense());
}

}  // namespace
}  // namespace qm
