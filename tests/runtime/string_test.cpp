#include "runtime_harness.h"

namespace qm::test {
namespace {

struct Case {
    std::u16string_view expression;
    std::u16string_view result;  // Describe() of the value, Elements() of an array
};

void RunAll(std::span<const Case> cases) {
    for (const auto& c : cases) {
        Harness h;
        EXPECT_EQ(h.Eval(c.expression).Describe(), c.result) << ToUtf8(c.expression);
    }
}

TEST(StringBuiltins, LengthAndSubstring) {
    const Case cases[] = {
        {u"String_Length(\"\")", u"0 (integer)"},
        {u"String_Length(\"abc\")", u"3 (integer)"},
        {u"String_Length(12.5)", u"4 (integer)"},
        // Code units: a character outside the basic plane counts two.
        {u"String_Length(\"\U0001F600\")", u"2 (integer)"},
        {u"String_Substring(\"abc\", 1, 10)", u"bc (string)"},
        {u"String_Substring(\"abc\", 3, 1)", u" (string)"},
        {u"String_Substring(\"abc\", 4, 1)", u" (string)"},
        {u"String_Substring(\"abc\", -2, 1)", u"a (string)"},
        {u"String_Substring(\"abc\", 0, -1)", u" (string)"},
        {u"String_Substring(\"abc\", 2147483647, 2147483647)", u" (string)"},
        {u"String_Substring(\"abc\", 1, 2147483647)", u"bc (string)"},
        {u"String_Substring(\"abc\", \"x\", \"2\")", u"ab (string)"},
    };
    RunAll(cases);
}

TEST(StringBuiltins, Split) {
    const Case cases[] = {
        {u"String_Split(\"a,b,c\", \",\")", u"0=a|1=b|2=c"},
        {u"String_Split(\"a,b,\", \",\")", u"0=a|1=b|2="},
        {u"String_Split(\",a\", \",\")", u"0=|1=a"},
        {u"String_Split(\"\", \",\")", u"0="},
        {u"String_Split(\"abc\", \"\")", u"0=a|1=b|2=c"},
        {u"String_Split(\"\", \"\")", u""},
        {u"String_Split(\"a::b:::c\", \"::\")", u"0=a|1=b|2=:c"},
        {u"String_Split(\"aXbxc\", \"x\")", u"0=aXb|1=c"},
        {u"String_Split(\"::\", \"::\")", u"0=|1="},
    };
    for (const auto& c : cases) {
        Harness h;
        EXPECT_EQ(Elements(h.Eval(c.expression)), c.result) << ToUtf8(c.expression);
    }
}

TEST(StringBuiltins, EqualityAndOrder) {
    const Case cases[] = {
        {u"String_Equals(\"abc\", \"abc\", false)", u"true (boolean)"},
        {u"String_Equals(\"abc\", \"ABC\", false)", u"false (boolean)"},
        {u"String_Equals(\"abc\", \"ABC\", true)", u"true (boolean)"},
        {u"String_Equals(\"abc\", \"ABC\", \"TRUE\")", u"false (boolean)"},
        {u"String_Equals(\"\u00C9t\u00E9\", \"\u00E9T\u00C9\", true)", u"true (boolean)"},
        {u"String_Equals(\"\u0416\", \"\u0436\", true)", u"true (boolean)"},
        {u"String_Equals(1, \"1\", false)", u"true (boolean)"},
        {u"String_DoesNotEqual(\"abc\", \"ABC\", false)", u"true (boolean)"},
        {u"String_DoesNotEqual(\"abc\", \"ABC\", true)", u"false (boolean)"},
        {u"String_LessThan(\"abc\", \"abd\", false)", u"true (boolean)"},
        {u"String_LessThan(\"B\", \"a\", false)", u"true (boolean)"},
        {u"String_LessThan(\"B\", \"a\", true)", u"false (boolean)"},
        {u"String_LessThan(\"ab\", \"abc\", false)", u"true (boolean)"},
        {u"String_LessThan(\"abc\", \"ABC\", true)", u"false (boolean)"},
        {u"String_GreaterThan(\"abc\", \"ABC\", true)", u"false (boolean)"},
        {u"String_GreaterThan(\"abc\", \"ABC\", false)", u"true (boolean)"},
        // Texts, not numbers: "10" sorts before "9".
        {u"String_LessThan(10, 9, false)", u"true (boolean)"},
        {u"String_LessThanOrEqualTo(\"same\", \"same\", false)", u"true (boolean)"},
        {u"String_LessThanOrEqualTo(\"Same\", \"sAME\", true)", u"true (boolean)"},
        {u"String_GreaterThanOrEqualTo(\"same\", \"same\", false)", u"true (boolean)"},
        {u"String_GreaterThanOrEqualTo(\"a\", \"b\", false)", u"false (boolean)"},
    };
    RunAll(cases);
}

TEST(StringBuiltins, ContainsStartsAndEnds) {
    const Case cases[] = {
        {u"String_Contains(\"Hello world\", \"o w\", false)", u"true (boolean)"},
        {u"String_Contains(\"Hello world\", \"WORLD\", false)", u"false (boolean)"},
        {u"String_Contains(\"Hello world\", \"WORLD\", true)", u"true (boolean)"},
        {u"String_Contains(\"ab\", \"abc\", false)", u"false (boolean)"},
        // The empty text is found in every text, the empty one included.
        {u"String_Contains(\"abc\", \"\", false)", u"true (boolean)"},
        {u"String_Contains(\"\", \"\", false)", u"true (boolean)"},
        {u"String_Contains(\"\", \"a\", false)", u"false (boolean)"},
        {u"String_StartsWith(\"abc\", \"ab\", false)", u"true (boolean)"},
        {u"String_StartsWith(\"abc\", \"AB\", true)", u"true (boolean)"},
        {u"String_StartsWith(\"a\", \"a\", false)", u"true (boolean)"},
        {u"String_StartsWith(\"a\", \"ab\", false)", u"false (boolean)"},
        {u"String_StartsWith(\"abc\", \"\", false)", u"true (boolean)"},
        {u"String_EndsWith(\"abc\", \"bc\", false)", u"true (boolean)"},
        {u"String_EndsWith(\"abc\", \"BC\", true)", u"true (boolean)"},
        {u"String_EndsWith(\"a\", \"ba\", false)", u"false (boolean)"},
        {u"String_EndsWith(\"abc\", \"\", false)", u"true (boolean)"},
    };
    RunAll(cases);
}

}  // namespace
}  // namespace qm::test
