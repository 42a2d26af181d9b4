// The DateTime family: the current date-time, and the parts and texts of a date-time in the
// user's regional settings. Numeric parts come back as zero-padded texts ("03"), which still take
// part in arithmetic because they are integer texts.
#include <string>
#include <utility>

#include "core/format.h"
#include "runtime/builtin.h"
#include "runtime/date_format.h"
#include "runtime/messages.h"

namespace qm {
namespace {

// A date-time argument: a time value, or a text in the ISO form ("2016-03-05T09:07:02"). The
// formatters see whole seconds.
MacroTime TimeArgument(const Argument& arg, std::u16string_view function) {
    std::optional<MacroTime> time;
    if (arg.value.kind() == Kind::Time) {
        time = arg.value.time();
    } else if (arg.value.kind() == Kind::String) {
        time = MacroTime::Parse(arg.value.string());
    }
    if (!time) FailMacro(msg::kExpectedDateTime, {function, arg.value.DescribeShort()});
    time->millisecond = 0;
    return *time;
}

const DateFormatter& Formatter(const RuntimeServices& services) {
    return services.dates ? *services.dates : DefaultDateFormatter();
}

MacroValue Text(std::int64_t n) { return MacroValue(IntegerText(n)); }

enum class Source { DatePicture, TimePicture, Whole };

// One function that formats its argument: a date or time picture, or one of the whole formats.
struct Formatted {
    std::u16string_view name;
    std::u16string_view description;
    std::u16string_view parameter;
    Source source;
    std::u16string_view picture;
    DateTimeFormat format = DateTimeFormat::LongDate;
};

constexpr std::u16string_view kDay = u"DateTime value to return the day portion of";
constexpr std::u16string_view kDate = u"DateTime value to return the date portion of";
constexpr std::u16string_view kTime = u"DateTime value to return the time portion of";
constexpr std::u16string_view kMonth = u"DateTime value to return the month portion of";

constexpr Formatted kFormatted[] = {
    {u"DateTime_Day", u"Returns the day of the month (1-31) of the given date/time", kDay, Source::DatePicture, u"dd"},
    {u"DateTime_DayOfTheWeek_Long", u"Returns the day of the week of the given date/time in long format", kDay,
     Source::DatePicture, u"dddd"},
    {u"DateTime_DayOfTheWeek_Short", u"Returns the day of the week of the given date/time in short format", kDay,
     Source::DatePicture, u"ddd"},
    {u"DateTime_Hour", u"Returns the hour (0-23) of the given date/time",
     u"DateTime value to return the hour portion of", Source::TimePicture, u"HH"},
    {u"DateTime_LongDate", u"Returns the date portion of the given date/time in long date format", kDate,
     Source::Whole, {}, DateTimeFormat::LongDate},
    {u"DateTime_LongTime", u"Returns the time portion of the given date/time in long format", kTime, Source::Whole,
     {}, DateTimeFormat::LongTime},
    {u"DateTime_Min", u"Returns the minute (0-59) of the given date/time",
     u"DateTime value to return the minute portion of", Source::TimePicture, u"mm"},
    {u"DateTime_Month", u"Returns the month (1-12) of the given date/time", kMonth, Source::DatePicture, u"MM"},
    {u"DateTime_MonthName_Long", u"Returns the name of the month of the given date/time in long format", kMonth,
     Source::DatePicture, u"MMMM"},
    {u"DateTime_MonthName_Short", u"Returns the name of the month of the given date/time in short format", kMonth,
     Source::DatePicture, u"MMM"},
    {u"DateTime_Sec", u"Returns the second (0-59) of the given date/time",
     u"DateTime value to return the second portion of", Source::TimePicture, u"ss"},
    {u"DateTime_ShortDate", u"Returns the date portion of the given date/time in short date format", kDate,
     Source::Whole, {}, DateTimeFormat::ShortDate},
    {u"DateTime_ShortTime", u"Returns the time portion of the given date/time in short format", kTime, Source::Whole,
     {}, DateTimeFormat::ShortTime},
    // The year's parameter text speaks of the month: that is the text users have always seen.
    {u"DateTime_Year", u"Returns the year of the given date/time", kMonth, Source::DatePicture, u"yyyy"},
};

template <std::size_t I>
MacroValue Format(RuntimeServices& services, std::span<Argument> args) {
    constexpr const Formatted& f = kFormatted[I];
    const MacroTime time = TimeArgument(args[0], f.name);
    const DateFormatter& formatter = Formatter(services);
    switch (f.source) {
    case Source::DatePicture: return MacroValue(formatter.FormatDate(time, f.picture));
    case Source::TimePicture: return MacroValue(formatter.FormatTime(time, f.picture));
    case Source::Whole: break;
    }
    return MacroValue(formatter.Format(time, f.format));
}

MacroValue DateTimeNow(RuntimeServices&, std::span<Argument>) { return MacroValue(LocalNow()); }

MacroValue DateTimeDayOfTheYear(RuntimeServices&, std::span<Argument> args) {
    return Text(TimeArgument(args[0], u"DateTime_DayOfTheYear").DayOfYear() + 1);
}

MacroValue DateTimeDaysSinceSunday(RuntimeServices&, std::span<Argument> args) {
    return Text(TimeArgument(args[0], u"DateTime_DaysSinceSunday").DayOfWeek());
}

BuiltinDefinition OneArgument(std::u16string_view name, std::u16string_view description,
                              std::u16string_view parameter, BuiltinFn fn) {
    return {{std::u16string(name), u"String", std::u16string(description),
             {{u"dateTime", u"DateTime", std::u16string(parameter)}}},
            fn};
}

template <std::size_t... I>
void AddFormatted(std::vector<BuiltinDefinition>& table, std::index_sequence<I...>) {
    (table.push_back(OneArgument(kFormatted[I].name, kFormatted[I].description, kFormatted[I].parameter, &Format<I>)),
     ...);
}

}  // namespace

std::vector<BuiltinDefinition> DateTimeBuiltins() {
    std::vector<BuiltinDefinition> table{
        {{u"DateTime_Now", u"DateTime", u"Returns the current date/time", {}}, &DateTimeNow},
        OneArgument(u"DateTime_DayOfTheYear", u"Returns the day of the year (1-366) of the given date/time", kDay,
                    &DateTimeDayOfTheYear),
        OneArgument(u"DateTime_DaysSinceSunday", u"Returns the number of days passed since Sunday for the given date/time",
                    u"DateTime value to return the days portion of", &DateTimeDaysSinceSunday),
    };
    AddFormatted(table, std::make_index_sequence<std::size(kFormatted)>());
    return table;
}

}  // namespace qm
