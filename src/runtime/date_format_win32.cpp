// Date and time texts from the system's own formatter, in the user's default locale (or a named
// one): pictures and whole formats are handed to GetDateFormatW and GetTimeFormatW as they are.
#include <windows.h>

#include <string>

#include "runtime/date_format.h"

namespace qm {
namespace {

constexpr int kBufferSize = 255;

SYSTEMTIME SystemTime(const MacroTime& t) {
    SYSTEMTIME st{};
    st.wYear = static_cast<WORD>(t.year);
    st.wMonth = static_cast<WORD>(t.month);
    st.wDayOfWeek = static_cast<WORD>(t.DayOfWeek());
    st.wDay = static_cast<WORD>(t.day);
    st.wHour = static_cast<WORD>(t.hour);
    st.wMinute = static_cast<WORD>(t.minute);
    st.wSecond = static_cast<WORD>(t.second);
    return st;
}

// The system's formatters take years 1601 to 30827; outside them they fail, as for any other
// failure the text is empty.
bool InRange(const MacroTime& t) { return t.year >= 1601 && t.year <= 30827; }

const wchar_t* Wide(const std::u16string& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

std::u16string Result(wchar_t* buffer, int written) {
    if (written <= 0) return {};
    return std::u16string(reinterpret_cast<const char16_t*>(buffer));
}

class SystemDateFormatter final : public DateFormatter {
public:
    explicit SystemDateFormatter(LCID locale) : locale_(locale) {}

    std::u16string FormatDate(const MacroTime& time, std::u16string_view picture) const override {
        return Date(time, 0, std::u16string(picture));
    }
    std::u16string FormatTime(const MacroTime& time, std::u16string_view picture) const override {
        return Time(time, 0, std::u16string(picture));
    }
    std::u16string Format(const MacroTime& time, DateTimeFormat format) const override {
        switch (format) {
        case DateTimeFormat::LongDate: return Date(time, DATE_LONGDATE, {});
        case DateTimeFormat::ShortDate: return Date(time, DATE_SHORTDATE, {});
        case DateTimeFormat::LongTime: return Time(time, 0, {});
        case DateTimeFormat::ShortTime: return Time(time, TIME_NOSECONDS, {});
        }
        return {};
    }

private:
    // An empty picture asks for the format the flags name.
    std::u16string Date(const MacroTime& time, DWORD flags, const std::u16string& picture) const {
        if (!InRange(time)) return {};
        const SYSTEMTIME st = SystemTime(time);
        wchar_t buffer[kBufferSize] = {};
        return Result(buffer, ::GetDateFormatW(locale_, flags, &st, picture.empty() ? nullptr : Wide(picture), buffer,
                                               kBufferSize));
    }
    std::u16string Time(const MacroTime& time, DWORD flags, const std::u16string& picture) const {
        if (!InRange(time)) return {};
        const SYSTEMTIME st = SystemTime(time);
        wchar_t buffer[kBufferSize] = {};
        return Result(buffer, ::GetTimeFormatW(locale_, flags, &st, picture.empty() ? nullptr : Wide(picture), buffer,
                                               kBufferSize));
    }

    LCID locale_;
};

// "de_DE" and "de-DE" name the same locale; an unknown name falls back to the user's default.
LCID LocaleFromName(std::string_view name) {
    if (name.empty()) return LOCALE_USER_DEFAULT;
    std::wstring wide;
    for (char c : name) wide += c == '_' ? L'-' : static_cast<wchar_t>(static_cast<unsigned char>(c));
    const LCID locale = ::LocaleNameToLCID(wide.c_str(), 0);
    return locale != 0 ? locale : LOCALE_USER_DEFAULT;
}

}  // namespace

std::unique_ptr<DateFormatter> MakeDateFormatter(std::string_view locale) {
    return std::make_unique<SystemDateFormatter>(LocaleFromName(locale));
}

const DateFormatter& DefaultDateFormatter() {
    static const std::unique_ptr<DateFormatter> formatter = MakeDateFormatter();
    return *formatter;
}

MacroTime LocalNow() {
    SYSTEMTIME st{};
    ::GetLocalTime(&st);
    MacroTime t;
    t.year = st.wYear;
    t.month = st.wMonth;
    t.day = st.wDay;
    t.hour = st.wHour;
    t.minute = st.wMinute;
    t.second = st.wSecond;
    return t;
}

}  // namespace qm
