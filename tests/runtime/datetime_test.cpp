#include <cstdlib>

#include "runtime/date_format.h"
#include "runtime_harness.h"

namespace qm::test {
namespace {

// Newer locale data puts a narrow or plain no-break space before AM/PM; the tests read any of
// them as a blank.
std::u16string Blanks(std::u16string text) {
    for (char16_t& c : text) {
        if (c == u'\u202F' || c == u'\u00A0') c = u' ';
    }
    return text;
}

struct DateHarness : Harness {
    std::unique_ptr<DateFormatter> formatter;

    explicit DateHarness(std::string_view locale = "en_US") : formatter(MakeDateFormatter(locale)) {
        services.dates = formatter.get();
    }
    std::u16string Text(std::u16string_view expression) { return Blanks(Eval(expression).AsString()); }
};

TEST(DateTimeBuiltins, TakeADateApart) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"DateTime_Year", u"2016"},
        {u"DateTime_Month", u"03"},
        {u"DateTime_Day", u"05"},
        {u"DateTime_Hour", u"09"},
        {u"DateTime_Min", u"07"},
        {u"DateTime_Sec", u"02"},
        {u"DateTime_DayOfTheYear", u"65"},
        {u"DateTime_DaysSinceSunday", u"6"},
        {u"DateTime_DayOfTheWeek_Long", u"Saturday"},
        {u"DateTime_DayOfTheWeek_Short", u"Sat"},
        {u"DateTime_MonthName_Long", u"March"},
        {u"DateTime_MonthName_Short", u"Mar"},
#ifdef _WIN32
        // The system's own formats for the locale.
        {u"DateTime_LongDate", u"Saturday, March 5, 2016"},
        {u"DateTime_ShortDate", u"3/5/2016"},
#else
        {u"DateTime_LongDate", u"March 5, 2016"},
        {u"DateTime_ShortDate", u"3/5/16"},
#endif
        {u"DateTime_LongTime", u"9:07:02 AM"},
        {u"DateTime_ShortTime", u"9:07 AM"},
    };
    DateHarness h;
    for (const auto& [function, text] : cases) {
        std::u16string call = std::u16string(function) + u"(\"2016-03-05T09:07:02\")";
        EXPECT_EQ(h.Text(call), text) << ToUtf8(call);
        // A time value gives the same text as its ISO form.
        h.Var(u"t") = MacroValue(MacroTime{2016, 3, 5, 9, 7, 2, 420});
        EXPECT_EQ(h.Text(std::u16string(function) + u"($t)"), text) << ToUtf8(function);
    }
}

TEST(DateTimeBuiltins, DayCounts) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"DateTime_DayOfTheYear(\"2016-12-31\")", u"366"},
        {u"DateTime_DayOfTheYear(\"2015-12-31\")", u"365"},
        {u"DateTime_DayOfTheYear(\"2016-01-01T23:59:59\")", u"1"},
        {u"DateTime_DaysSinceSunday(\"2016-03-06\")", u"0"},
        {u"DateTime_Hour(\"2016-03-05\")", u"00"},
#ifdef _WIN32
        // The system formats years from 1601 on; before, the formatter fails and the text is empty.
        {u"DateTime_Day(\"1500-03-01\")", u""},
        {u"DateTime_Year(\"1601-01-01\")", u"1601"},
#else
        // No Julian calendar before 1582: the fields come back as they are.
        {u"DateTime_Day(\"1500-03-01\")", u"01"},
        {u"DateTime_Year(\"0999-06-15\")", u"0999"},
#endif
    };
    DateHarness h;
    for (const auto& [expression, text] : cases) EXPECT_EQ(h.Text(expression), text) << ToUtf8(expression);
}

TEST(DateTimeBuiltins, NowIsTheLocalTimeToTheSecond) {
    DateHarness h;
    MacroTime before = LocalNow();
    MacroTime now = h.Eval(u"$now = DateTime_Now()").time();
    EXPECT_EQ(now.millisecond, 0);
    EXPECT_LE(before.Instant(), now.Instant());
    EXPECT_LE(now.Instant(), LocalNow().Instant());
    // Zero-padded parts are integer texts, so they take part in arithmetic.
    EXPECT_EQ(h.Eval(u"DateTime_Month($now) + 1").Describe(), IntegerText(now.month + 1) + u" (integer)");
}

TEST(DateTimeBuiltins, RefuseWhatIsNoDate) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"DateTime_Year(\"abc\")", u"DateTime_Year expects a date and time (such as 2016-03-05T09:07:02), not abc (string)"},
        {u"DateTime_Day($unset)", u"DateTime_Day expects a date and time (such as 2016-03-05T09:07:02), not <empty>"},
        {u"DateTime_DayOfTheYear(\"2016-02-30\")",
         u"DateTime_DayOfTheYear expects a date and time (such as 2016-03-05T09:07:02), not 2016-02-30 (string)"},
        {u"DateTime_LongDate(Array(1, 2))",
         u"DateTime_LongDate expects a date and time (such as 2016-03-05T09:07:02), not Array of size (2)"},
    };
    DateHarness h;
    for (const auto& [expression, message] : cases) EXPECT_EQ(h.Error(expression), message) << ToUtf8(expression);
}

TEST(DateFormatter, FollowsTheLocale) {
    const MacroTime t{2016, 3, 5, 9, 7, 2, 0};
    auto de = MakeDateFormatter("de-DE");
    EXPECT_EQ(de->FormatDate(t, u"MMMM"), u"März");
    EXPECT_EQ(de->FormatDate(t, u"dddd"), u"Samstag");
#ifdef _WIN32
    EXPECT_EQ(de->Format(t, DateTimeFormat::LongDate), u"Samstag, 5. März 2016");
#else
    EXPECT_EQ(de->Format(t, DateTimeFormat::LongDate), u"5. März 2016");
#endif
    EXPECT_EQ(de->Format(t, DateTimeFormat::ShortTime), u"09:07");
    // A month name alone takes its standalone form, beside a day its formatting form.
    auto ru = MakeDateFormatter("ru_RU");
    EXPECT_EQ(ru->FormatDate(t, u"MMMM"), u"март");
    EXPECT_EQ(ru->FormatDate(t, u"d MMMM"), u"5 марта");
    // Digits stay ASCII where the locale writes numbers in its own digits.
    auto ar = MakeDateFormatter("ar_EG");
    EXPECT_EQ(ar->FormatDate(t, u"yyyy"), u"2016");
}

TEST(DateFormatter, TranslatesPictures) {
    const MacroTime t{2016, 3, 5, 21, 7, 2, 0};
    auto en = MakeDateFormatter("en_US");
    EXPECT_EQ(en->FormatDate(t, u"yyyy-MM-dd"), u"2016-03-05");
    // Quoted text is copied, a doubled quote inside stands for one, other letters stand for themselves.
    EXPECT_EQ(en->FormatDate(t, u"dddd', 'MMMM d 'o''clock' x"), u"Saturday, March 5 o'clock x");
    EXPECT_EQ(en->FormatTime(t, u"h:mm tt, HH:ss"), u"9:07 PM, 21:02");
}

#ifndef _WIN32
// The environment variable's value for the test's duration (null: unset).
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedEnv() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }

private:
    const char* name_;
    std::optional<std::string> old_;
};

TEST(DateFormatter, TakesTheUsersLocaleFromTheEnvironment) {
    const MacroTime t{2016, 3, 5, 9, 7, 2, 0};
    struct Case {
        const char* lcAll;
        const char* lcTime;
        const char* lang;
        std::u16string_view month;
    };
    const Case cases[] = {
        {"de_DE.UTF-8", "fr_FR", "en_US", u"März"},
        {nullptr, "fr_FR.UTF-8@euro", "de_DE", u"mars"},
        {"", "", "de_DE", u"März"},
        {"C", "de_DE", nullptr, u"March"},
        {"C.UTF-8", nullptr, nullptr, u"March"},
    };
    for (const auto& c : cases) {
        ScopedEnv all("LC_ALL", c.lcAll), time("LC_TIME", c.lcTime), lang("LANG", c.lang);
        EXPECT_EQ(MakeDateFormatter()->FormatDate(t, u"MMMM"), c.month) << (c.lcAll ? c.lcAll : "(unset)");
    }
}

#endif

}  // namespace
}  // namespace qm::test
