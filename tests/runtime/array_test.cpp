#include "runtime_harness.h"

namespace qm::test {
namespace {

struct Case {
    std::vector<std::u16string_view> steps;  // evaluated in order; the last one's value is checked
    std::u16string_view result;              // Describe() of the last value
    std::u16string_view array = {};          // Elements($a) afterwards, when given
};

void RunCase(const Case& c) {
    Harness h;
    MacroValue last;
    for (auto step : c.steps) last = h.Eval(step);
    std::string where = ToUtf8(c.steps.back());
    EXPECT_EQ(last.Describe(), c.result) << where;
    if (!c.array.empty()) {
        EXPECT_EQ(Elements(h.Var(u"a")), c.array) << where;
    }
}

TEST(ArrayBuiltins, BuildMeasureAndJoin) {
    const Case cases[] = {
        {{u"$a = Array()"}, u"Array of size (0)", u""},
        {{u"$a = Array(1, \"b\", 3)", u"Array_Length($a)"}, u"3 (integer)", u"0=1|1=b|2=3"},
        {{u"Array_Length($unset)"}, u"0 (integer)"},
        {{u"Array_Join(Array(\"a\", \"b\", \"c\"), \", \")"}, u"a, b, c (string)"},
        {{u"Array_Join(Array(\"a\"), \"-\")"}, u"a (string)"},
        {{u"Array_Join(Array(), \"-\")"}, u" (string)"},
        {{u"Array_Join(Array(1, true, 2.5), 0)"}, u"10true02.5 (string)"},
        // Elements join in the order they were added, not in key order.
        {{u"$a[\"z\"] = 1", u"$a[\"b\"] = 2", u"Array_Join($a, \"\")"}, u"12 (string)"},
    };
    for (const auto& c : cases) RunCase(c);
}

TEST(ArrayBuiltins, KeysAreIntegersOrTexts) {
    Harness h;
    h.Eval(u"$a = Array(\"x\", \"y\")");
    h.Eval(u"$a[\"name\"] = 1");
    h.Eval(u"$a[\"007\"] = 2");
    h.Eval(u"$a[-4] = 3");
    MacroValue keys = h.Eval(u"Array_Keys($a)");
    ASSERT_EQ(keys.kind(), Kind::Array);
    std::vector<std::u16string> described;
    for (const auto& element : keys.array()->elements()) described.push_back(element.value->Describe());
    EXPECT_EQ(described, (std::vector<std::u16string>{u"0 (integer)", u"1 (integer)", u"name (string)",
                                                      u"007 (string)", u"-4 (integer)"}));
}

TEST(ArrayBuiltins, PushAndPopChangeTheCallersArray) {
    const Case cases[] = {
        // An unset variable becomes an array in place.
        {{u"Array_PushBack($a, \"x\")"}, u"1 (integer)", u"0=x"},
        {{u"Array_PushFront($a, \"x\")"}, u"1 (integer)", u"0=x"},
        {{u"$a = Array(1)", u"Array_PushBack($a, 2)"}, u"2 (integer)", u"0=1|1=2"},
        // An array is shared: pushing through a copy changes the original.
        {{u"$a = Array(1)", u"$b = $a", u"Array_PushBack($b, 2)", u"Array_Length($a)"}, u"2 (integer)", u"0=1|1=2"},
        // An unset element becomes an array inside its array.
        {{u"$a = Array()", u"Array_PushBack($a[\"list\"], 7)", u"Array_Length($a[\"list\"])"}, u"1 (integer)"},
        {{u"$a = Array(\"a\", \"b\")", u"$a[\"x\"] = \"s\"", u"Array_PushFront($a, \"z\")"}, u"4 (integer)",
         u"0=z|1=a|2=b|x=s"},
        {{u"$a = Array(\"a\", \"b\", \"c\")", u"Array_PopBack($a)"}, u"c (string)", u"0=a|1=b"},
        // Numeric keys start again from 0, a string key keeps its name.
        {{u"$a = Array(\"a\", \"b\", \"c\")", u"$a[\"name\"] = \"n\"", u"Array_PopFront($a)"}, u"a (string)",
         u"0=b|1=c|name=n"},
        {{u"$a[\"first\"] = \"f\"", u"Array_PushBack($a, \"p\")", u"Array_PopFront($a)"}, u"f (string)", u"0=p"},
        // As a stack the keys stay 0..n-1.
        {{u"$a = Array(1, 2)", u"Array_PopBack($a)", u"Array_PushBack($a, 3)"}, u"2 (integer)", u"0=1|1=3"},
        // As a queue too.
        {{u"$a = Array(1, 2)", u"Array_PopFront($a)", u"Array_PushBack($a, 3)"}, u"2 (integer)", u"0=2|1=3"},
        {{u"$a = Array(Array(1, 2))", u"Array_Length(Array_PopBack($a))"}, u"2 (integer)"},
    };
    for (const auto& c : cases) RunCase(c);
}

// Keys that only look like indexes stay keys of their own, and removals leave the keys the
// macro expects, whether the array keeps key texts or not.
TEST(ArrayBuiltins, KeysThroughChangesOfForm) {
    const Case cases[] = {
        {{u"$a = Array(\"x\", \"y\")", u"$a[\"01\"] = 1", u"$a[\"1.0\"] = 2", u"$a[1]"}, u"y (string)",
         u"0=x|1=y|01=1|1.0=2"},
        {{u"$a = Array(\"x\")", u"$a[\"k\"] = 1", u"$a[\"0\"] = \"z\"", u"$a[0]"}, u"z (string)", u"0=z|k=1"},
        {{u"$a = Array(\"x\")", u"$a[5] = \"y\"", u"Array_PushBack($a, \"z\")"}, u"3 (integer)", u"0=x|5=y|6=z"},
        // PopFront renumbers "01" as the integer it is; "1.0" is a text.
        {{u"$a = Array(1, 2)", u"$a[\"01\"] = 3", u"$a[\"1.0\"] = 4", u"Array_PopFront($a)"}, u"1 (string)",
         u"0=2|1=3|1.0=4"},
        {{u"$a = Array(1)", u"$a[\"k\"] = 2", u"Array_PopBack($a)", u"Array_PopBack($a)", u"Array_PushBack($a, 5)"},
         u"1 (integer)", u"0=5"},
        {{u"$a = Array(1, 2, 3)", u"Array_PopFront($a)", u"Array_Join(Array_Keys($a), \",\")"}, u"0,1 (string)"},
    };
    for (const auto& c : cases) RunCase(c);
}

// An element passed by reference is the one the call writes to, even when a later argument grows
// or shrinks its array (the element then lives on its own).
TEST(ArrayBuiltins, ElementArgumentsSurviveLaterArguments) {
    const Case cases[] = {
        {{u"$a = Array()", u"Array_PushBack($a[0], Array_PushBack($a, 7))", u"Array_Join($a[0], \",\")"},
         u"2 (string)"},
        {{u"$a = Array()", u"Array_PushBack($a[0], Array_PushBack($a, 7))", u"$a[1]"}, u"7 (string)"},
        {{u"$a = Array(1, 2, $unset)", u"Array_PushBack($a[2], Array_PopBack($a))"}, u"1 (integer)", u"0=1|1=2"},
        {{u"$a = Array(Array())", u"Array_PushBack($a[0][Array_PushBack($a, 9)], \"x\")",
          u"Array_Join($a[0][2], \"\")"},
         u"x (string)"},
    };
    for (const auto& c : cases) RunCase(c);
}

TEST(ArrayBuiltins, RefuseWhatIsNoArray) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        // Join, Keys and the Pops refuse the unset value; Length and the Pushes take it as empty.
        {u"Array_Join($unset, \",\")", u"Expected an array for Array_Join"},
        {u"Array_Join(\"a,b\", \",\")", u"Expected an array for Array_Join"},
        {u"Array_Keys($unset)", u"Expected an array for Array_Keys"},
        {u"Array_Length(\"abc\")", u"Expected an array for Array_Length"},
        {u"Array_Length(0)", u"Expected an array for Array_Length"},
        {u"Array_PushBack(\"abc\", 1)", u"Expected an array for: Array_PushBack"},
        {u"Array_PushFront(DateTime_Now(), 1)", u"Expected an array for: Array_PushFront"},
        {u"Array_PopBack($unset)", u"Expected an array for: Array_PopBack"},
        {u"Array_PopFront(1)", u"Expected an array for: Array_PopFront"},
        {u"Array_PopBack(Array())", u"Array_PopBack: Cannot pop from empty array"},
        {u"Array_PopFront(Array())", u"Array_PopFront: Cannot pop from empty array"},
    };
    for (const auto& [expression, message] : cases) {
        Harness h;
        EXPECT_EQ(h.Error(expression), message) << ToUtf8(expression);
    }
}

TEST(ArrayBuiltins, FailedPushLeavesTheVariableAlone) {
    Harness h;
    h.Eval(u"$s = \"text\"");
    EXPECT_EQ(h.Error(u"Array_PushBack($s, 1)"), u"Expected an array for: Array_PushBack");
    EXPECT_EQ(h.Var(u"s").Describe(), u"text (string)");
}

}  // namespace
}  // namespace qm::test
