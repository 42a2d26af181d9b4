// Conversions between attribute and text values and the XML form every document of the add-in
// uses: booleans, dates, integers, and the escaping helpers for text that is put into XML by hand.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qm::xml {

// A broken-down date-time with the field layout of the Windows system time (eight 16-bit fields).
// On Windows the two are interchangeable field by field; the name differs so both can coexist.
struct SystemTime {
    std::uint16_t wYear = 0;
    std::uint16_t wMonth = 0;
    std::uint16_t wDayOfWeek = 0;
    std::uint16_t wDay = 0;
    std::uint16_t wHour = 0;
    std::uint16_t wMinute = 0;
    std::uint16_t wSecond = 0;
    std::uint16_t wMilliseconds = 0;

    friend bool operator==(const SystemTime&, const SystemTime&) = default;
};

// "true" or "false".
std::u16string FormatXmlBool(bool value);
// True exactly for "true", "True" and "1"; every other text is false.
bool ParseXmlBool(std::u16string_view text);

// "2016-03-05T14:07:09.042Z": zero-filled, the year at least two digits wide; the day of the week
// is not written.
std::u16string FormatXmlDateTime(const SystemTime& time);
// Zeroes the time, then reads year, month, day, hour, minute, second and milliseconds, each
// followed by one separator character that is consumed but never compared. Fields after the first
// one that does not read stay 0; the day of the week stays 0.
SystemTime ParseXmlDateTime(std::u16string_view text);

// Decimal text of an integer attribute, and the stream reading of one: leading blanks skipped,
// the longest decimal prefix taken, 0 when there is none, saturated when out of range.
std::u16string FormatXmlInt(std::int32_t value);
std::int32_t ParseXmlInt(std::u16string_view text);

// Replaces less-than, greater-than, double quote and ampersand by their entities in one
// left-to-right pass; the apostrophe is left alone. Text without them comes back unchanged.
std::u16string EscapeXml(std::u16string_view text);
// Replaces "&lt;", "&gt;", "&quot;" and "&amp;" by their characters; any other ampersand stays.
std::u16string UnescapeXml(std::u16string_view text);
// Page content: each ampersand not followed by a number sign becomes "&amp;", so numeric
// character references pass through; UnescapeAmpersands undoes it, keeping "&amp;#".
std::u16string EscapeAmpersands(std::u16string_view text);
std::u16string UnescapeAmpersands(std::u16string_view text);

}  // namespace qm::xml
