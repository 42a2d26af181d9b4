#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include "core/text.h"
#include "core/value.h"
#include "fake_object.h"

namespace qm {
namespace {

using test::FakeObject;

MacroValue Str(std::u16string_view s) { return MacroValue(s); }
MacroValue Int(std::int32_t i) { return MacroValue(i); }
MacroValue Uns(std::uint32_t u) { return MacroValue(u); }
MacroValue Dec(double d) { return MacroValue(d); }
MacroValue Arr(std::initializer_list<MacroValue> values) {
    auto a = std::make_shared<MacroArray>();
    for (const auto& v : values) a->PushBack(v);
    return MacroValue(a);
}
MacroValue Obj(std::int32_t type, int id) { return MacroValue(ObjectRef(std::make_shared<FakeObject>(type, id))); }

std::string D(const MacroValue& v) { return ToUtf8(v.Describe()); }

TEST(TextRules, IntegerAndNumericText) {
    const struct {
        std::u16string text;
        bool integer;
        bool numeric;
    } cases[] = {
        {u"12", true, true},    {u"-12", true, true},   {u"007", true, true},  {u"0", true, true},
        {u"1.5", false, true},  {u".5", false, true},   {u"5.", false, true},  {u"-.5", false, true},
        {u"-", false, false},   {u".", false, false},   {u"-.", false, false}, {u"1.2.3", false, false},
        {u"1e5", false, false}, {u"+12", false, false}, {u"1,5", false, false}, {u" 1", false, false},
        {u"1 ", false, false},  {u"", false, false},    {u"--1", false, false}, {u"1-", false, false},
        {u"abc", false, false}, {u"\uFF11", false, false},  // a full-width digit is no digit
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsIntegerText(c.text), c.integer) << ToUtf8(c.text);
        EXPECT_EQ(IsNumericText(c.text), c.numeric) << ToUtf8(c.text);
        EXPECT_EQ(Str(c.text).IsInteger(), c.integer) << ToUtf8(c.text);
        EXPECT_EQ(Str(c.text).IsNumeric(), c.numeric) << ToUtf8(c.text);
    }
}

TEST(TextRules, BooleanTextIsNarrow) {
    for (std::u16string_view t : {u"true", u"True", u"1"}) EXPECT_TRUE(BooleanText(t)) << ToUtf8(t);
    for (std::u16string_view t : {u"TRUE", u"yes", u"2", u"01", u" true", u"", u"false", u"tRUE"}) {
        EXPECT_FALSE(BooleanText(t)) << ToUtf8(t);
    }
}

TEST(TextRules, StreamExtraction) {
    const struct {
        std::u16string text;
        std::int32_t integer;
        double decimal;
    } cases[] = {
        {u"12", 12, 12.0},
        {u"007", 7, 7.0},
        {u"  -12abc", -12, -12.0},
        {u"\t\r\n 3", 3, 3.0},
        {u"+4", 4, 4.0},
        {u"2.5", 2, 2.5},
        {u"-2.5", -2, -2.5},
        {u".5", 0, 0.5},
        {u"5.", 5, 5.0},
        {u"1e5", 1, 100000.0},
        {u"1E-2x", 1, 0.01},
        {u"1e", 1, 1.0},
        {u"1e+", 1, 1.0},
        {u"abc", 0, 0.0},
        {u"", 0, 0.0},
        {u"-", 0, 0.0},
        {u"- 1", 0, 0.0},
        {u".", 0, 0.0},
        {u"1,5", 1, 1.0},
        {u"0x1A", 0, 0.0},
        {u"2147483647", 2147483647, 2147483647.0},
        {u"2147483648", 2147483647, 2147483648.0},
        {u"-2147483648", -2147483647 - 1, -2147483648.0},
        {u"-99999999999999999999", -2147483647 - 1, -1e20},
        {u"1e999", 1, std::numeric_limits<double>::max()},
        {u"-1e999", -1, -std::numeric_limits<double>::max()},
        {u"1e-999", 1, 0.0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ExtractInteger(c.text), c.integer) << ToUtf8(c.text);
        EXPECT_EQ(ExtractDecimal(c.text), c.decimal) << ToUtf8(c.text);
    }
}

TEST(TextRules, DecimalTextReadsBackAsNumeric) {
    const struct {
        double value;
        std::string text;
    } cases[] = {
        {3.5, "3.5"},      {1.0, "1"},          {-0.5, "-0.5"}, {0.1, "0.1"},
        {0.1 + 0.2, "0.30000000000000004"},     {1e20, "100000000000000000000"},
        {1e-7, "0.0000001"}, {0.0, "0"},        {-2.0, "-2"},
    };
    for (const auto& c : cases) {
        std::u16string text = DecimalText(c.value);
        EXPECT_EQ(ToUtf8(text), c.text);
        EXPECT_TRUE(IsNumericText(text)) << c.text;
        EXPECT_EQ(ExtractDecimal(text), c.value) << c.text;
    }
    EXPECT_EQ(ToUtf8(IntegerText(-2147483648LL)), "-2147483648");
    EXPECT_EQ(ToUtf8(IntegerText(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
}

TEST(Conversions, AsInteger) {
    const struct {
        MacroValue value;
        std::int32_t expected;
    } cases[] = {
        {MacroValue(), 0},
        {Str(u"007"), 7},
        {Str(u"12abc"), 12},
        {Str(u"abc"), 0},
        {MacroValue(true), 1},
        {MacroValue(false), 0},
        {Int(-5), -5},
        {Uns(4294967295u), -1},
        {Uns(2147483648u), -2147483647 - 1},
        {Dec(2.5), 3},
        {Dec(-2.5), -3},
        {Dec(2.4), 2},
        {Dec(-2.4), -2},
        {Dec(1e10), 1410065408},  // rounded, then cut to 32 bits
        {Dec(-1e10), -1410065408},
        {Dec(4294967295.0), -1},
        {Dec(std::nan("")), 0},
        {Dec(1e300), 0},
    };
    for (const auto& c : cases) EXPECT_EQ(c.value.AsInteger(), c.expected) << D(c.value);
}

TEST(Conversions, AsDecimalAsStringAsBoolean) {
    EXPECT_EQ(MacroValue().AsDecimal(), 0.0);
    EXPECT_EQ(Str(u"2.5").AsDecimal(), 2.5);
    EXPECT_EQ(MacroValue(true).AsDecimal(), 1.0);
    EXPECT_EQ(Uns(4294967295u).AsDecimal(), 4294967295.0);
    EXPECT_EQ(Int(-3).AsDecimal(), -3.0);

    const struct {
        MacroValue value;
        std::string text;
        bool truth;
    } cases[] = {
        {MacroValue(), "", false},
        {Str(u"True"), "True", true},
        {Str(u"1"), "1", true},
        {Str(u"TRUE"), "TRUE", false},
        {Str(u"yes"), "yes", false},
        {Str(u"2"), "2", false},
        {MacroValue(true), "true", true},
        {MacroValue(false), "false", false},
        {Int(-12), "-12", true},
        {Int(0), "0", false},
        {Uns(4294967295u), "4294967295", true},
        {Dec(3.5), "3.5", true},
        {Dec(0.0), "0", false},
        {Dec(-0.0), "-0", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ToUtf8(c.value.AsString()), c.text) << D(c.value);
        EXPECT_EQ(c.value.AsBoolean(), c.truth) << D(c.value);
    }
    EXPECT_TRUE(Dec(std::nan("")).AsBoolean());  // NaN is not equal to 0.0
}

TEST(Conversions, TimeConvertsOnlyFromAndToText) {
    MacroTime t{2016, 3, 5, 9, 7, 2, 42};
    MacroValue v(t);
    EXPECT_EQ(ToUtf8(v.AsString()), "2016-03-05T09:07:02.042");
    EXPECT_EQ(v.AsTime(), t);
    EXPECT_EQ(Str(u"2016-03-05T09:07:02.042").AsTime(), t);
    EXPECT_THROW(v.AsInteger(), std::invalid_argument);
    EXPECT_THROW(v.AsDecimal(), std::invalid_argument);
    EXPECT_THROW(v.AsBoolean(), std::invalid_argument);
    EXPECT_THROW(Int(5).AsTime(), std::invalid_argument);
    EXPECT_THROW(MacroValue().AsTime(), std::invalid_argument);
    try {
        Str(u"next tuesday").AsTime();
        FAIL() << "no exception";
    } catch (const std::invalid_argument& e) {
        EXPECT_NE(std::string(e.what()).find("\"next tuesday\""), std::string::npos) << e.what();
    }
}

TEST(Conversions, ArraysAndObjectsHaveNoScalarForm) {
    MacroValue array = Arr({Int(1)});
    MacroValue object = Obj(1, 1);
    for (const MacroValue* v : {&array, &object}) {
        EXPECT_THROW(v->AsInteger(), std::invalid_argument);
        EXPECT_THROW(v->AsDecimal(), std::invalid_argument);
        EXPECT_THROW(v->AsString(), std::invalid_argument);
        EXPECT_THROW(v->AsBoolean(), std::invalid_argument);
        EXPECT_THROW(v->AsTime(), std::invalid_argument);
        EXPECT_FALSE(v->IsInteger());
        EXPECT_FALSE(v->IsNumeric());
    }
    EXPECT_THROW(object.AsArray(), std::invalid_argument);
    EXPECT_THROW(Int(0).AsArray(), std::invalid_argument);
    EXPECT_THROW(Str(u"").AsArray(), std::invalid_argument);
}

TEST(Conversions, EmptyBecomesAnArrayInPlace) {
    MacroValue v;
    ArrayRef a = v.AsArray();
    ASSERT_TRUE(a);
    EXPECT_EQ(v.kind(), Kind::Array);
    EXPECT_EQ(v.array(), a);
    EXPECT_EQ(v.AsArray(), a);  // an array returns itself
}

TEST(Predicates, ByKind) {
    EXPECT_TRUE(MacroValue().IsInteger());
    EXPECT_TRUE(MacroValue(true).IsInteger());
    EXPECT_TRUE(Uns(1).IsInteger());
    EXPECT_FALSE(Dec(1.0).IsInteger());
    EXPECT_TRUE(Dec(1.0).IsNumeric());
    EXPECT_FALSE(MacroValue(MacroTime{}).IsInteger());
    EXPECT_FALSE(MacroValue(MacroTime{}).IsNumeric());
}

TEST(Describe, EveryKind) {
    const struct {
        MacroValue value;
        std::string text;
    } cases[] = {
        {MacroValue(), "<empty>"},
        {Str(u"abc"), "abc (string)"},
        {Str(u""), " (string)"},
        {Int(12), "12 (integer)"},
        {Int(-12), "-12 (integer)"},
        {Uns(4294967295u), "4294967295 (unsigned integer)"},
        {MacroValue(true), "true (boolean)"},
        {Dec(2.5), "2.5 (decimal)"},
        {MacroValue(MacroTime{2016, 3, 5, 9, 7, 2, 0}), "2016-03-05T09:07:02 (time)"},
        {Obj(3, 7), "Fake #7 (object)"},
        {Arr({}), "Array of size (0)"},
    };
    for (const auto& c : cases) EXPECT_EQ(D(c.value), c.text);
}

TEST(Describe, ArraysInKeyOrderWithOneTabPerLevel) {
    auto inner = std::make_shared<MacroArray>();
    inner->PushBack(Str(u"x"));
    auto outer = std::make_shared<MacroArray>();
    for (int i = 0; i < 11; ++i) outer->PushBack(Int(i));
    outer->FindOrCreateValue(u"name") = MacroValue(inner);
    outer->FindOrCreateValue(u"empty") = MacroValue(std::make_shared<MacroArray>());
    // Keys sort as text: 0, 1, 10, 2, ... ; nested arrays one level deeper.
    EXPECT_EQ(D(MacroValue(outer)),
              "Array of size (13):"
              "\r\n\t[0]: 0 (integer)"
              "\r\n\t[1]: 1 (integer)"
              "\r\n\t[10]: 10 (integer)"
              "\r\n\t[2]: 2 (integer)"
              "\r\n\t[3]: 3 (integer)"
              "\r\n\t[4]: 4 (integer)"
              "\r\n\t[5]: 5 (integer)"
              "\r\n\t[6]: 6 (integer)"
              "\r\n\t[7]: 7 (integer)"
              "\r\n\t[8]: 8 (integer)"
              "\r\n\t[9]: 9 (integer)"
              "\r\n\t[empty]: Array of size (0)"
              "\r\n\t[name]: Array of size (1):"
              "\r\n\t\t[0]: x (string)");
    EXPECT_EQ(ToUtf8(MacroValue(outer).DescribeShort()), "Array of size (13)");
}

TEST(Describe, ACycleStopsInsteadOfRecursing) {
    auto a = std::make_shared<MacroArray>();
    a->PushBack(Int(1));
    a->PushBack(MacroValue(a));
    EXPECT_EQ(D(MacroValue(a)), "Array of size (2):\r\n\t[0]: 1 (integer)\r\n\t[1]: <cycle>");
    a->PopBack();  // break the cycle so the array is freed
}

TEST(Comparisons, EqualsConvertsTheRightValueToTheLeftKind) {
    const struct {
        MacroValue left, right;
        bool equal;
    } cases[] = {
        {Int(7), Str(u"7"), true},
        {Str(u"7"), Int(7), true},
        {Str(u"7.0"), Int(7), false},  // compared as text "7.0" vs "7"
        {Int(7), Str(u"7.0"), true},   // "7.0" reads as 7
        {Int(0), Str(u"abc"), true},   // "abc" reads as 0
        {Str(u"abc"), Str(u"ABC"), false},
        {Str(u"abc"), Str(u"abc"), true},
        {MacroValue(true), Str(u"True"), true},
        {MacroValue(true), Str(u"TRUE"), false},
        {Uns(4294967295u), Int(-1), true},
        {Dec(2.5), Str(u"2.5"), true},
        {Dec(std::nan("")), Dec(std::nan("")), false},
        {MacroValue(), MacroValue(), true},
        {MacroValue(), Str(u""), true},
        {MacroValue(), Int(0), false},
        {Int(0), MacroValue(), true},
        {Int(1), Arr({}), false},
        {Arr({}), Int(1), false},
        {Str(u"x"), Obj(1, 1), false},
        {MacroValue(MacroTime{2016, 3, 5}), Str(u"2016-03-05"), true},
        {MacroValue(MacroTime{2016, 3, 5}), Str(u"not a time"), false},
        {MacroValue(MacroTime{2016, 3, 5}), Int(5), false},
        {Obj(1, 1), Obj(1, 1), true},
        {Obj(1, 1), Obj(1, 2), false},
        {Obj(1, 1), Obj(2, 1), false},  // type numbers differ
        {Obj(1, 1), Str(u"x"), false},
    };
    for (const auto& c : cases) EXPECT_EQ(Equals(c.left, c.right), c.equal) << D(c.left) << " vs " << D(c.right);
}

TEST(Comparisons, ArrayEqualityIgnoresElementOrder) {
    auto a = std::make_shared<MacroArray>();
    a->FindOrCreateValue(u"x") = Int(1);
    a->FindOrCreateValue(u"y") = Str(u"2");
    auto b = std::make_shared<MacroArray>();
    b->FindOrCreateValue(u"y") = Int(2);
    b->FindOrCreateValue(u"x") = Int(1);
    EXPECT_TRUE(*a == *b);
    EXPECT_TRUE(Equals(MacroValue(a), MacroValue(b)));
    b->FindOrCreateValue(u"x") = Int(3);
    EXPECT_FALSE(*a == *b);
    b->FindOrCreateValue(u"x") = Int(1);
    b->FindOrCreateValue(u"z");
    EXPECT_FALSE(*a == *b);  // sizes differ

    // Same size, a key missing on the right.
    auto c = std::make_shared<MacroArray>();
    c->FindOrCreateValue(u"x") = Int(1);
    c->FindOrCreateValue(u"w") = Int(2);
    EXPECT_FALSE(*a == *c);

    // Nested arrays compare element-wise; an array against a scalar never equals.
    EXPECT_TRUE(Equals(Arr({Arr({Int(1)}), Str(u"a")}), Arr({Arr({Str(u"1")}), Str(u"a")})));
    EXPECT_FALSE(Equals(Arr({Arr({Int(1)})}), Arr({Int(1)})));
    EXPECT_FALSE(Equals(Arr({Int(1)}), Arr({Arr({Int(1)})})));
}

TEST(Comparisons, SelfContainingArraysCompareWithoutRecursing) {
    auto a = std::make_shared<MacroArray>();
    a->PushBack(MacroValue(a));
    auto b = std::make_shared<MacroArray>();
    b->PushBack(MacroValue(b));
    EXPECT_TRUE(*a == *b);
    a->PopBack();
    b->PopBack();
}

TEST(Comparisons, Orderings) {
    EXPECT_FALSE(LessThan(Str(u"abc"), Str(u"ABC")));
    EXPECT_TRUE(LessThan(Str(u"ABC"), Str(u"abc")));
    EXPECT_TRUE(GreaterThan(Str(u"abc"), Str(u"ABC")));
    EXPECT_FALSE(LessThanNoCase(Str(u"abc"), Str(u"ABC")));
    EXPECT_FALSE(LessThanNoCase(Str(u"ABC"), Str(u"abc")));
    EXPECT_FALSE(GreaterThanNoCase(Str(u"abc"), Str(u"ABC")));
    EXPECT_TRUE(LessThanNoCase(Str(u"apple"), Str(u"Banana")));
    EXPECT_FALSE(LessThan(Str(u"apple"), Str(u"Banana")));
    EXPECT_TRUE(LessThanNoCase(Str(u"\u00C4a"), Str(u"\u00E4b")));  // Ä folds to ä
    EXPECT_TRUE(LessThan(Str(u"ab"), Str(u"abc")));                // a proper prefix first
    EXPECT_FALSE(GreaterThanNoCase(Str(u""), Str(u"")));
    EXPECT_TRUE(LessThanNoCase(Str(u""), Str(u"a")));
    EXPECT_TRUE(LessThan(Int(-1), Int(0)));
    EXPECT_FALSE(LessThan(Uns(4294967295u), Uns(0)));  // unsigned order
    EXPECT_TRUE(LessThan(Int(-1), Str(u"0")));
    EXPECT_TRUE(LessThan(Str(u"10"), Int(9)));  // as text: "10" < "9"
    EXPECT_TRUE(LessThanNoCase(Int(2), Int(10)));  // not a string: the plain order
    EXPECT_TRUE(LessThan(MacroValue(false), MacroValue(true)));
    EXPECT_TRUE(LessThan(Dec(1.5), Str(u"2")));
    EXPECT_FALSE(LessThan(Dec(std::nan("")), Dec(1)));
    EXPECT_FALSE(GreaterThan(Dec(std::nan("")), Dec(1)));
    EXPECT_TRUE(LessThan(MacroValue(MacroTime{2016, 1, 1}), MacroValue(MacroTime{2016, 1, 1, 0, 0, 0, 1})));
    EXPECT_TRUE(LessThan(MacroValue(), Int(0)));  // the empty value sorts first
    EXPECT_FALSE(LessThan(MacroValue(), MacroValue()));
    EXPECT_FALSE(GreaterThan(MacroValue(), Int(0)));
    EXPECT_THROW(LessThan(Arr({}), Arr({})), std::invalid_argument);
    EXPECT_THROW(GreaterThan(Obj(1, 1), Obj(1, 2)), std::invalid_argument);
    EXPECT_THROW(LessThan(Str(u"a"), Arr({})), std::invalid_argument);
}

std::string Keys(const MacroArray& a) {
    std::string out;
    for (const auto& e : a.elements()) out += ToUtf8(e.key) + ",";
    return out;
}

TEST(Arrays, PushBackUsesNextIndex) {
    MacroArray a;
    a.PushBack(Int(10));
    a.PushBack(Int(11));
    EXPECT_EQ(Keys(a), "0,1,");
    EXPECT_TRUE(a.dense());
    EXPECT_EQ(a.FindValue(u"1")->integer(), 11);
    EXPECT_EQ(a.FindValue(u"01"), nullptr);
    EXPECT_EQ(a.FindValue(u"2"), nullptr);
    EXPECT_EQ(a.FindValue(u"-1"), nullptr);
    EXPECT_EQ(a.nextIndex(), 2);
}

TEST(Arrays, IntegerKeysMoveNextIndexPastThem) {
    MacroArray a;
    a.PushBack(Int(0));
    a.FindOrCreateValue(u"5") = Int(5);
    EXPECT_FALSE(a.dense());
    EXPECT_EQ(a.nextIndex(), 6);
    a.PushBack(Int(6));
    a.FindOrCreateValue(u"name") = Int(-1);
    a.FindOrCreateValue(u"3") = Int(3);  // below nextIndex: no change
    a.PushBack(Int(7));
    EXPECT_EQ(Keys(a), "0,5,6,name,3,7,");
    EXPECT_EQ(a.nextIndex(), 8);
    a.FindOrCreateValue(u"007");  // an integer text: 7 < 8, no change, and a key of its own
    EXPECT_EQ(a.size(), 7u);
    EXPECT_NE(a.FindValue(u"007"), a.FindValue(u"7"));
    a.FindOrCreateValue(u"-4");
    EXPECT_EQ(a.nextIndex(), 8);
    // Key order is text order.
    std::string ordered;
    for (std::size_t i : a.KeyOrder()) ordered += ToUtf8(a.elements()[i].key) + ",";
    EXPECT_EQ(ordered, "-4,0,007,3,5,6,7,name,");
}

TEST(Arrays, FindOrCreateAppendsEmptyAndFindsExisting) {
    MacroArray a;
    ValueRef x = a.FindOrCreate(u"x");
    EXPECT_TRUE(x->IsEmpty());
    EXPECT_EQ(a.FindOrCreate(u"x"), x);
    EXPECT_EQ(a.size(), 1u);
    // Dense arrays append on the next index and stay dense.
    MacroArray b;
    b.FindOrCreateValue(u"0") = Int(1);
    b.FindOrCreateValue(u"1") = Int(2);
    EXPECT_TRUE(b.dense());
    EXPECT_EQ(b.FindOrCreateValue(u"0").integer(), 1);
    b.FindOrCreateValue(u"3");
    EXPECT_FALSE(b.dense());
    EXPECT_EQ(b.FindValue(u"1")->integer(), 2);
    EXPECT_EQ(b.nextIndex(), 4);
}

TEST(Arrays, PushFrontAndPopFrontRenumberIntegerKeys) {
    MacroArray a;
    a.PushBack(Str(u"a"));
    a.FindOrCreateValue(u"k") = Str(u"k");
    a.PushBack(Str(u"b"));
    a.PushFront(Str(u"z"));
    EXPECT_EQ(Keys(a), "0,1,k,2,");
    EXPECT_EQ(a.FindValue(u"0")->string(), u"z");
    EXPECT_EQ(a.FindValue(u"2")->string(), u"b");
    EXPECT_EQ(a.nextIndex(), 3);
    EXPECT_EQ(a.PopFront().string(), u"z");
    EXPECT_EQ(Keys(a), "0,k,1,");
    EXPECT_EQ(a.FindValue(u"1")->string(), u"b");
    EXPECT_EQ(a.FindValue(u"k")->string(), u"k");
    EXPECT_EQ(a.PopFront().string(), u"a");
    EXPECT_EQ(Keys(a), "k,0,");
    EXPECT_EQ(a.PopFront().string(), u"k");  // a string-keyed first element goes too
    EXPECT_EQ(Keys(a), "0,");
    EXPECT_TRUE(a.dense());
    a.PushBack(Str(u"c"));
    EXPECT_EQ(Keys(a), "0,1,");

    // Renumbering after sparse integer keys: 0, 1, 2 in element order.
    MacroArray b;
    b.FindOrCreateValue(u"5") = Int(5);
    b.FindOrCreateValue(u"-3") = Int(-3);
    b.PushFront(Int(0));
    EXPECT_EQ(Keys(b), "0,1,2,");
    EXPECT_TRUE(b.dense());
    EXPECT_EQ(b.FindValue(u"2")->integer(), -3);
    EXPECT_EQ(b.nextIndex(), 3);
}

TEST(Arrays, PopBackGivesTheLastAndReusesItsIndex) {
    MacroArray a;
    a.PushBack(Int(1));
    a.PushBack(Int(2));
    a.PushBack(Int(3));
    EXPECT_EQ(a.PopBack().integer(), 3);
    EXPECT_EQ(a.nextIndex(), 2);
    a.PushBack(Int(4));
    EXPECT_EQ(Keys(a), "0,1,2,");
    // A string key popped leaves nextIndex alone.
    a.FindOrCreateValue(u"s") = Int(9);
    EXPECT_EQ(a.PopBack().integer(), 9);
    EXPECT_EQ(a.nextIndex(), 3);
    EXPECT_EQ(a.FindValue(u"s"), nullptr);
    a.PushBack(Int(5));
    EXPECT_EQ(Keys(a), "0,1,2,3,");
    EXPECT_THROW(MacroArray().PopBack(), std::invalid_argument);
    EXPECT_THROW(MacroArray().PopFront(), std::invalid_argument);
}

TEST(Arrays, PoppedValueIsIndependentOfOtherHolders) {
    MacroArray a;
    a.PushBack(Str(u"x"));
    ValueRef held = a.FindOrCreate(u"0");
    MacroValue popped = a.PopBack();
    EXPECT_EQ(popped.string(), u"x");
    EXPECT_EQ(held->string(), u"x");  // copied, not moved out from under the holder
}

// Whether an array is dense or keyed does not show: the same keys and values compare equal and
// print alike in either form, and keys that only look like indexes ("01", "1.0") stay keys.
TEST(Arrays, DenseAndKeyedFormsCompareAndPrintAlike) {
    auto dense = std::make_shared<MacroArray>();
    for (std::int32_t i = 0; i < 12; ++i) dense->PushBack(Int(i));
    auto keyed = std::make_shared<MacroArray>();  // the same keys, created from the last
    for (std::int32_t i = 11; i >= 0; --i) keyed->FindOrCreateValue(IntegerText(i)) = Int(i);
    ASSERT_TRUE(dense->dense());
    ASSERT_FALSE(keyed->dense());
    EXPECT_TRUE(Equals(MacroValue(dense), MacroValue(keyed)));
    EXPECT_TRUE(Equals(MacroValue(keyed), MacroValue(dense)));
    EXPECT_EQ(MacroValue(dense).Describe(), MacroValue(keyed).Describe());

    struct Case {
        std::vector<std::u16string_view> keys;  // of an array holding 0, 1, ... under them
        bool equalToDense;                      // to the dense array 0, 1
    };
    const Case cases[] = {
        {{u"1", u"0"}, true},
        {{u"0", u"01"}, false},
        {{u"0", u"1.0"}, false},
        {{u"0", u" 1"}, false},
        {{u"0", u"-1"}, false},
    };
    MacroValue two = Arr({Int(0), Int(1)});
    for (const Case& c : cases) {
        auto other = std::make_shared<MacroArray>();
        for (std::u16string_view key : c.keys) other->FindOrCreateValue(key) = Int(key == u"0" ? 0 : 1);
        EXPECT_EQ(Equals(two, MacroValue(other)), c.equalToDense) << ToUtf8(c.keys[1]);
        EXPECT_EQ(Equals(MacroValue(other), two), c.equalToDense) << ToUtf8(c.keys[1]);
        EXPECT_EQ(other->FindValue(u"1") != nullptr, c.equalToDense) << ToUtf8(c.keys[1]);
    }
}

// A snapshot keeps the values of its moment whatever happens to the array afterwards, and the
// array sees its own changes.
TEST(Arrays, SnapshotKeepsTheValuesOfItsMoment) {
    struct Case {
        const char* change;
        void (*apply)(MacroArray&);
        std::string keysAfter;
    };
    const Case cases[] = {
        {"PushBack", [](MacroArray& a) { a.PushBack(Int(9)); }, "0,1,2,3,"},
        {"PushFront", [](MacroArray& a) { a.PushFront(Int(9)); }, "0,1,2,3,"},
        {"PopBack", [](MacroArray& a) { a.PopBack(); }, "0,1,"},
        {"PopFront", [](MacroArray& a) { a.PopFront(); }, "0,1,"},
        {"write", [](MacroArray& a) { a.FindOrCreateValue(u"1") = Int(9); }, "0,1,2,"},
        {"string key", [](MacroArray& a) { a.FindOrCreateValue(u"k") = Int(9); }, "0,1,2,k,"},
        {"handle", [](MacroArray& a) { *a.FindOrCreate(u"1") = Int(9); }, "0,1,2,"},
    };
    for (const Case& c : cases) {
        MacroArray a;
        for (std::int32_t i = 0; i < 3; ++i) a.PushBack(Int(i));
        const auto snapshot = a.Snapshot();
        c.apply(a);
        ASSERT_EQ(snapshot->size(), 3u) << c.change;
        for (std::int32_t i = 0; i < 3; ++i) EXPECT_EQ((*snapshot)[i].integer(), i) << c.change;
        EXPECT_EQ(Keys(a), c.keysAfter) << c.change;
    }
    EXPECT_EQ(MacroArray().Snapshot(), nullptr);
}

// A handle stays its element's while the array grows, shifts and takes snapshots; once the element
// is removed, the handle keeps a value of its own.
TEST(Arrays, HandlesFollowTheirElement) {
    MacroArray a;
    a.PushBack(Int(0));
    ValueRef handle = a.FindOrCreate(u"0");
    EXPECT_EQ(a.FindOrCreate(u"0"), handle);
    for (std::int32_t i = 1; i < 1000; ++i) a.PushBack(Int(i));
    *handle = Int(-1);
    EXPECT_EQ(a.FindValue(u"0")->integer(), -1);
    const auto snapshot = a.Snapshot();
    *handle = Int(-2);  // changed through the handle: the snapshot keeps what it saw
    EXPECT_EQ((*snapshot)[0].integer(), -1);
    a.PushFront(Int(5));
    EXPECT_EQ(a.FindValue(u"1")->integer(), -2);
    EXPECT_EQ(a.PopFront().integer(), 5);
    EXPECT_EQ(a.PopFront().integer(), -2);
    *handle = Int(7);
    EXPECT_EQ(a.FindValue(u"0")->integer(), 1);
    EXPECT_EQ(a.size(), 999u);
}

TEST(Arrays, SharedByReference) {
    MacroValue a = Arr({Int(1)});
    MacroValue b = a;
    b.array()->PushBack(Int(2));
    EXPECT_EQ(a.array()->size(), 2u);
}

TEST(Arrays, DeepNestingIsFreedWithoutRecursion) {
    MacroValue v;
    for (int i = 0; i < 1'000'000; ++i) {
        auto a = std::make_shared<MacroArray>();
        a->PushBack(std::move(v));
        v = MacroValue(a);
    }
    v = MacroValue();  // would overflow the stack if destruction recursed
    SUCCEED();
}

TEST(Arrays, LargeDenseArray) {
    MacroArray a;
    for (int i = 0; i < 100'000; ++i) a.PushBack(Int(i));
    EXPECT_TRUE(a.dense());
    EXPECT_EQ(a.FindValue(u"99999")->integer(), 99999);
    EXPECT_EQ(a.KeyOrder().size(), 100'000u);
    EXPECT_EQ(a.elements()[a.KeyOrder()[2]].key, u"10");
}

// The multiplication sign (U+00D7) among the Latin-1 capitals is no letter.
TEST(LowerCase, Units) {
    const std::pair<char16_t, char16_t> cases[] = {
        {u'A', u'a'},           {u'z', u'z'},           {u'\u00C9', u'\u00E9'}, {u'\u00D7', u'\u00D7'},
        {u'\u0100', u'\u0101'}, {u'\u0141', u'\u0142'}, {u'\u0391', u'\u03B1'}, {u'\u0416', u'\u0436'},
        {u'\u0401', u'\u0451'}, {u'1', u'1'},
    };
    for (const auto& [unit, lower] : cases) EXPECT_EQ(LowerCaseUnit(unit), lower) << static_cast<int>(unit);
}

}  // namespace
}  // namespace qm
