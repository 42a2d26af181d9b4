// The platform seam of the DateTime built-ins: the current local time, and locale-aware texts of
// a date-time in the user's regional settings.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "core/time.h"

namespace qm {

// The four whole formats of the user's locale.
enum class DateTimeFormat {
    LongDate,   // the locale's long date
    ShortDate,  // the locale's short date
    LongTime,   // time with seconds
    ShortTime,  // time without seconds
};

class DateFormatter {
public:
    virtual ~DateFormatter() = default;
    // Pictures in the system's picture language. Date pictures: "d", "dd" (day of the month),
    // "ddd", "dddd" (day name), "M", "MM" (month), "MMM", "MMMM" (month name), "yy", "yyyy" (year).
    // Time pictures: "h", "hh" (12-hour), "H", "HH" (24-hour), "m", "mm", "s", "ss", "t", "tt"
    // (AM/PM). Text in single quotes is copied; other characters stand for themselves. Numbers are
    // always written in ASCII digits, so the texts of numeric pictures take part in arithmetic.
    // A failure yields the empty string.
    virtual std::u16string FormatDate(const MacroTime& time, std::u16string_view picture) const = 0;
    virtual std::u16string FormatTime(const MacroTime& time, std::u16string_view picture) const = 0;
    virtual std::u16string Format(const MacroTime& time, DateTimeFormat format) const = 0;
};

// The formatter for a locale name such as "de_DE" or "de-DE"; an empty name means the user's
// default locale.
std::unique_ptr<DateFormatter> MakeDateFormatter(std::string_view locale = {});

// The formatter for the user's default locale, made once for the process.
const DateFormatter& DefaultDateFormatter();

// The current local date-time to the second (milliseconds 0).
MacroTime LocalNow();

}  // namespace qm
