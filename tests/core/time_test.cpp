#include <gtest/gtest.h>

#include <string>

#include "core/text.h"
#include "core/time.h"

namespace qm {
namespace {

TEST(MacroTime, InstantCountsMillisecondsFromTheEpoch) {
    EXPECT_EQ((MacroTime{1970, 1, 1}).Instant(), 0);
    EXPECT_EQ((MacroTime{1970, 1, 2}).Instant(), 86'400'000);
    EXPECT_EQ((MacroTime{1969, 12, 31, 23, 59, 59, 999}).Instant(), -1);
    EXPECT_EQ((MacroTime{2000, 3, 1}).Instant(), 951'868'800'000);
    EXPECT_EQ((MacroTime{2016, 3, 5, 9, 7, 2, 42}).Instant(), 1'457'168'822'042);
}

TEST(MacroTime, FromInstantIsTheInverse) {
    const MacroTime cases[] = {
        {1970, 1, 1},         {1969, 12, 31, 23, 59, 59, 999}, {2000, 2, 29, 12, 0, 0, 1}, {1900, 2, 28},
        {1600, 1, 1},         {2016, 3, 5, 9, 7, 2, 42},       {9999, 12, 31, 23, 59, 59, 999},
        {1, 1, 1},
    };
    for (const MacroTime& t : cases) {
        EXPECT_EQ(MacroTime::FromInstant(t.Instant()), t) << ToUtf8(t.ToText());
    }
}

TEST(MacroTime, DayOfWeekAndYear) {
    const struct {
        MacroTime time;
        int dayOfWeek;
        int dayOfYear;
    } cases[] = {
        {{1970, 1, 1}, 4, 0},       // a Thursday
        {{2016, 3, 5}, 6, 64},      // a Saturday; 31 + 29 + 4 days before it
        {{2016, 12, 31}, 6, 365},   // leap year: the last day is 365
        {{2015, 12, 31}, 4, 364},
        {{1969, 12, 31}, 3, 364},
        {{2023, 1, 1}, 0, 0},       // a Sunday
        {{1900, 3, 1}, 4, 59},      // 1900 is not a leap year
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.time.DayOfWeek(), c.dayOfWeek) << ToUtf8(c.time.ToText());
        EXPECT_EQ(c.time.DayOfYear(), c.dayOfYear) << ToUtf8(c.time.ToText());
    }
}

TEST(MacroTime, TextIsIso) {
    EXPECT_EQ(ToUtf8((MacroTime{2016, 3, 5, 9, 7, 2}).ToText()), "2016-03-05T09:07:02");
    EXPECT_EQ(ToUtf8((MacroTime{2016, 3, 5, 9, 7, 2, 42}).ToText()), "2016-03-05T09:07:02.042");
    EXPECT_EQ(ToUtf8((MacroTime{33, 1, 2}).ToText()), "0033-01-02T00:00:00");
    EXPECT_EQ(ToUtf8((MacroTime{12345, 1, 2}).ToText()), "12345-01-02T00:00:00");
    EXPECT_EQ(ToUtf8((MacroTime{-44, 3, 15}).ToText()), "-0044-03-15T00:00:00");
}

TEST(MacroTime, ParseAcceptsTheIsoForms) {
    const struct {
        std::u16string text;
        MacroTime time;
    } cases[] = {
        {u"2016-03-05", {2016, 3, 5}},
        {u"2016-03-05T09:07", {2016, 3, 5, 9, 7}},
        {u"2016-03-05 09:07", {2016, 3, 5, 9, 7}},
        {u"2016-03-05T09:07:02", {2016, 3, 5, 9, 7, 2}},
        {u"2016-03-05T09:07:02.042", {2016, 3, 5, 9, 7, 2, 42}},
        {u"2016-03-05T09:07:02.5", {2016, 3, 5, 9, 7, 2, 500}},
        {u"2016-03-05T09:07:02.1234567", {2016, 3, 5, 9, 7, 2, 123}},
        {u"2016-02-29", {2016, 2, 29}},
        {u"2000-02-29", {2000, 2, 29}},
        {u"0033-01-02", {33, 1, 2}},
        {u"12345-01-02", {12345, 1, 2}},
        {u"-0044-03-15", {-44, 3, 15}},
        {u"2016-12-31T23:59:59.999", {2016, 12, 31, 23, 59, 59, 999}},
    };
    for (const auto& c : cases) {
        auto parsed = MacroTime::Parse(c.text);
        ASSERT_TRUE(parsed.has_value()) << ToUtf8(c.text);
        EXPECT_EQ(*parsed, c.time) << ToUtf8(c.text);
        EXPECT_EQ(MacroTime::Parse(parsed->ToText()), parsed) << ToUtf8(c.text);  // round trip
    }
}

TEST(MacroTime, ParseRejects) {
    for (std::u16string_view text : {
             u"", u"2016", u"2016-03", u"16-03-05", u"2016-3-5", u"2016/03/05", u"2016-13-01", u"2016-00-01",
             u"2016-01-00", u"2015-02-29", u"1900-02-29", u"2016-04-31", u"2016-03-05T", u"2016-03-05T24:00",
             u"2016-03-05T09:60", u"2016-03-05T09:07:60", u"2016-03-05T09:07:02.", u"2016-03-05T09:07:02Z",
             u"2016-03-05T09:07:02+01:00", u" 2016-03-05", u"2016-03-05 ", u"2016-03-05x", u"2016-03-05T9:07",
             u"abc", u"2016-03-05T09", u"2016-03-05T09:07:2",
         }) {
        EXPECT_FALSE(MacroTime::Parse(text).has_value()) << ToUtf8(text);
    }
}

}  // namespace
}  // namespace qm
