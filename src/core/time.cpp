#include "core/time.h"

namespace qm {

namespace {

constexpr std::int64_t kMillisecondsPerDay = 86'400'000;

bool IsLeapYear(std::int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int DaysInMonth(std::int64_t year, int month) {
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return (month == 2 && IsLeapYear(year)) ? 29 : kDays[month - 1];
}

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
std::int64_t DaysFromCivil(std::int64_t y, int m, int d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yoe = y - era * 400;                                      // [0, 399]
    const std::int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;  // [0, 365]
    const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;           // [0, 146096]
    return era * 146097 + doe - 719468;
}

void CivilFromDays(std::int64_t z, std::int64_t& y, int& m, int& d) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = yoe + era * 400 + (m <= 2);
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
    std::int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

void AppendNumber(std::u16string& out, std::int64_t value, int width) {
    char16_t digits[24];
    int n = 0;
    std::uint64_t v = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    do {
        digits[n++] = static_cast<char16_t>(u'0' + v % 10);
        v /= 10;
    } while (v != 0);
    if (value < 0) out.push_back(u'-');
    for (int i = n; i < width; ++i) out.push_back(u'0');
    while (n > 0) out.push_back(digits[--n]);
}

// Reads exactly `count` decimal digits at `pos`.
bool ReadDigits(std::u16string_view text, std::size_t& pos, std::size_t count, std::int32_t& value) {
    if (pos + count > text.size()) return false;
    std::int32_t v = 0;
    for (std::size_t i = 0; i < count; ++i) {
        char16_t c = text[pos + i];
        if (c < u'0' || c > u'9') return false;
        v = v * 10 + (c - u'0');
    }
    value = v;
    pos += count;
    return true;
}

}  // namespace

std::int64_t MacroTime::Instant() const {
    // Fields out of range (a hand-built value) are carried arithmetically rather than rejected.
    std::int64_t y = year;
    std::int64_t m0 = static_cast<std::int64_t>(month) - 1;
    y += FloorDiv(m0, 12);
    int m = static_cast<int>(m0 - FloorDiv(m0, 12) * 12) + 1;
    std::int64_t days = DaysFromCivil(y, m, 1) + (static_cast<std::int64_t>(day) - 1);
    return days * kMillisecondsPerDay + static_cast<std::int64_t>(hour) * 3'600'000 +
           static_cast<std::int64_t>(minute) * 60'000 + static_cast<std::int64_t>(second) * 1000 + millisecond;
}

MacroTime MacroTime::FromInstant(std::int64_t instant) {
    std::int64_t days = FloorDiv(instant, kMillisecondsPerDay);
    std::int64_t rest = instant - days * kMillisecondsPerDay;
    MacroTime t;
    std::int64_t y;
    int m, d;
    CivilFromDays(days, y, m, d);
    t.year = static_cast<std::int32_t>(y);
    t.month = m;
    t.day = d;
    t.hour = static_cast<std::int32_t>(rest / 3'600'000);
    t.minute = static_cast<std::int32_t>(rest / 60'000 % 60);
    t.second = static_cast<std::int32_t>(rest / 1000 % 60);
    t.millisecond = static_cast<std::int32_t>(rest % 1000);
    return t;
}

int MacroTime::DayOfWeek() const {
    std::int64_t days = FloorDiv(Instant(), kMillisecondsPerDay);
    // 1970-01-01 was a Thursday (4).
    std::int64_t w = (days + 4) % 7;
    return static_cast<int>(w < 0 ? w + 7 : w);
}

int MacroTime::DayOfYear() const {
    MacroTime normal = FromInstant(Instant());
    return static_cast<int>(DaysFromCivil(normal.year, normal.month, normal.day) - DaysFromCivil(normal.year, 1, 1));
}

// "YYYY-MM-DDTHH:MM:SS", then ".fff" when the milliseconds are not 0. A year outside 0-9999 is
// written with its sign and all its digits (Parse reads it back).
std::u16string MacroTime::ToText() const {
    std::u16string out;
    out.reserve(23);
    AppendNumber(out, year, 4);
    out.push_back(u'-');
    AppendNumber(out, month, 2);
    out.push_back(u'-');
    AppendNumber(out, day, 2);
    out.push_back(u'T');
    AppendNumber(out, hour, 2);
    out.push_back(u':');
    AppendNumber(out, minute, 2);
    out.push_back(u':');
    AppendNumber(out, second, 2);
    if (millisecond != 0) {
        out.push_back(u'.');
        AppendNumber(out, millisecond, 3);
    }
    return out;
}

// Accepted: [-]YYYY-MM-DD, optionally followed by 'T' or one blank and HH:MM, optionally :SS,
// optionally '.' and one or more fraction digits (the first three are the milliseconds, further
// digits are dropped). The year has at least four digits. No white space around, no zone.
std::optional<MacroTime> MacroTime::Parse(std::u16string_view text) {
    MacroTime t;
    std::size_t pos = 0;
    bool negative = false;
    if (pos < text.size() && text[pos] == u'-') {
        negative = true;
        ++pos;
    }
    std::size_t start = pos;
    std::int64_t year = 0;
    while (pos < text.size() && text[pos] >= u'0' && text[pos] <= u'9') {
        year = year * 10 + (text[pos] - u'0');
        if (year > 99'999'999) return std::nullopt;
        ++pos;
    }
    if (pos - start < 4) return std::nullopt;
    t.year = static_cast<std::int32_t>(negative ? -year : year);
    if (pos >= text.size() || text[pos] != u'-') return std::nullopt;
    ++pos;
    if (!ReadDigits(text, pos, 2, t.month)) return std::nullopt;
    if (pos >= text.size() || text[pos] != u'-') return std::nullopt;
    ++pos;
    if (!ReadDigits(text, pos, 2, t.day)) return std::nullopt;
    if (t.month < 1 || t.month > 12 || t.day < 1 || t.day > DaysInMonth(t.year, t.month)) return std::nullopt;
    if (pos == text.size()) return t;

    if (text[pos] != u'T' && text[pos] != u' ') return std::nullopt;
    ++pos;
    if (!ReadDigits(text, pos, 2, t.hour)) return std::nullopt;
    if (pos >= text.size() || text[pos] != u':') return std::nullopt;
    ++pos;
    if (!ReadDigits(text, pos, 2, t.minute)) return std::nullopt;
    if (t.hour > 23 || t.minute > 59) return std::nullopt;
    if (pos == text.size()) return t;

    if (text[pos] != u':') return std::nullopt;
    ++pos;
    if (!ReadDigits(text, pos, 2, t.second)) return std::nullopt;
    if (t.second > 59) return std::nullopt;
    if (pos == text.size()) return t;

    if (text[pos] != u'.') return std::nullopt;
    ++pos;
    std::size_t fractionStart = pos;
    std::int32_t ms = 0;
    std::int32_t scale = 100;
    while (pos < text.size() && text[pos] >= u'0' && text[pos] <= u'9') {
        ms += (text[pos] - u'0') * scale;
        scale /= 10;
        ++pos;
    }
    if (pos == fractionStart || pos != text.size()) return std::nullopt;
    t.millisecond = ms;
    return t;
}

}  // namespace qm
