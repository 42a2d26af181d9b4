// A date-time value of the macro language: a broken-down local date-time to the millisecond.
// Its text form is ISO 8601 ("2016-03-05T09:07:02", with ".042" when milliseconds are set).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qm {

struct MacroTime {
    std::int32_t year = 1970;  // full year
    std::int32_t month = 1;    // 1-12
    std::int32_t day = 1;      // 1-31
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t millisecond = 0;

    // Milliseconds since 1970-01-01T00:00:00 in the same (local) reckoning; the identity used by
    // comparisons.
    std::int64_t Instant() const;
    static MacroTime FromInstant(std::int64_t instant);

    int DayOfWeek() const;  // 0 = Sunday
    int DayOfYear() const;  // 0-365

    std::u16string ToText() const;
    // Accepts "YYYY-MM-DD", "YYYY-MM-DDTHH:MM", "YYYY-MM-DDTHH:MM:SS" and ".fff" fractions, with
    // 'T' or a blank between date and time. Out-of-range fields reject the text.
    static std::optional<MacroTime> Parse(std::u16string_view text);

    friend bool operator==(const MacroTime&, const MacroTime&) = default;
};

}  // namespace qm
