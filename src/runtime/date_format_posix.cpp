// Date and time texts over ICU, in the locale named by LC_ALL, LC_TIME or LANG (the first that is
// set), as the user's regional settings on this platform. The system's picture language is
// translated into ICU patterns; a date-time is formatted as the wall-clock fields it carries, in
// the proleptic Gregorian calendar and with ASCII digits, whatever the locale's defaults.
#include <ctime>
#include <map>
#include <memory>
#include <mutex>

#include <unicode/datefmt.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "runtime/date_format.h"

namespace qm {
namespace {

std::string UserLocaleName() {
    std::string name;
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) {
            name = value;
            break;
        }
    }
    // "de_DE.UTF-8@euro" names the locale de_DE.
    name = name.substr(0, name.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return "en_US";
    return name;
}

icu::Locale ResolveLocale(std::string_view requested) {
    std::string name(requested.empty() ? UserLocaleName() : std::string(requested));
    for (char& c : name) {
        if (c == '-') c = '_';
    }
    icu::Locale locale(name.c_str());
    if (locale.isBogus() || *locale.getLanguage() == '\0') locale = icu::Locale("en", "US");
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    status = U_ZERO_ERROR;
    locale.setKeywordValue("numbers", "latn", status);
    return locale;
}

// Days since 1970-01-01 of a proleptic Gregorian date.
std::int64_t DaysFromCivil(std::int64_t y, std::int64_t m, std::int64_t d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yoe = y - era * 400;
    const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

// The fields read as if they were UTC, so that formatting in UTC gives them back unchanged, even
// on a day when the local clock skips or repeats an hour.
UDate WallClock(const MacroTime& t) {
    std::int64_t days = DaysFromCivil(t.year, t.month, t.day);
    return static_cast<UDate>(((days * 24 + t.hour) * 60 + t.minute) * 60 + t.second) * 1000.0;
}

// Literal text of a picture becomes one quoted ICU segment; a quote inside is doubled.
void FlushLiteral(std::u16string& pattern, std::u16string& literal) {
    if (literal.empty()) return;
    pattern += u'\'';
    for (char16_t c : literal) {
        pattern += c;
        if (c == u'\'') pattern += u'\'';
    }
    pattern += u'\'';
    literal.clear();
}

// The ICU pattern for one run of a picture letter, or nothing when the letter is no field of the
// picture kind.
std::u16string_view FieldPattern(char16_t letter, std::size_t run, bool date, bool hasDay) {
    if (date) {
        switch (letter) {
        case u'd': return run == 1 ? u"d" : run == 2 ? u"dd" : run == 3 ? u"EEE" : u"EEEE";
        // Beside a day of the month a month name takes its formatting form, alone its standalone
        // form (the two differ in languages that inflect month names).
        case u'M':
            if (run <= 2) return run == 1 ? u"M" : u"MM";
            if (hasDay) return run == 3 ? u"MMM" : u"MMMM";
            return run == 3 ? u"LLL" : u"LLLL";
        case u'y': return run <= 2 ? u"yy" : u"yyyy";
        case u'g': return u"G";
        default: return {};
        }
    }
    switch (letter) {
    case u'h': return run == 1 ? u"h" : u"hh";
    case u'H': return run == 1 ? u"H" : u"HH";
    case u'm': return run == 1 ? u"m" : u"mm";
    case u's': return run == 1 ? u"s" : u"ss";
    case u't': return u"a";
    default: return {};
    }
}

std::u16string PatternFromPicture(std::u16string_view picture, bool date) {
    bool hasDay = false;
    for (std::size_t i = 0; i < picture.size();) {
        std::size_t run = 1;
        while (i + run < picture.size() && picture[i + run] == picture[i]) ++run;
        if (picture[i] == u'd' && run <= 2) hasDay = true;
        i += run;
    }
    std::u16string pattern;
    std::u16string literal;
    for (std::size_t i = 0; i < picture.size();) {
        const char16_t c = picture[i];
        if (c == u'\'') {
            // Quoted text up to the closing quote; a doubled quote inside stands for one.
            ++i;
            while (i < picture.size()) {
                if (picture[i] == u'\'') {
                    if (i + 1 < picture.size() && picture[i + 1] == u'\'') {
                        literal += u'\'';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                literal += picture[i++];
            }
            continue;
        }
        std::size_t run = 1;
        while (i + run < picture.size() && picture[i + run] == c) ++run;
        std::u16string_view field = FieldPattern(c, run, date, hasDay);
        if (field.empty()) {
            literal.append(run, c);
        } else {
            FlushLiteral(pattern, literal);
            pattern += field;
        }
        i += run;
    }
    FlushLiteral(pattern, literal);
    return pattern;
}

std::u16string ToU16(const icu::UnicodeString& text) {
    return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

class IcuDateFormatter final : public DateFormatter {
public:
    explicit IcuDateFormatter(icu::Locale locale) : locale_(std::move(locale)) {}

    std::u16string FormatDate(const MacroTime& time, std::u16string_view picture) const override {
        return Run(u"P" + PatternFromPicture(picture, true), time);
    }
    std::u16string FormatTime(const MacroTime& time, std::u16string_view picture) const override {
        return Run(u"P" + PatternFromPicture(picture, false), time);
    }
    std::u16string Format(const MacroTime& time, DateTimeFormat format) const override {
        switch (format) {
        case DateTimeFormat::LongDate: return Run(u"long date", time);
        case DateTimeFormat::ShortDate: return Run(u"short date", time);
        case DateTimeFormat::LongTime: return Run(u"long time", time);
        case DateTimeFormat::ShortTime: return Run(u"short time", time);
        }
        return {};
    }

private:
    // Formatters are made once per key ("P" and a pattern, or a format's name) and reused; ICU
    // formatters change state while formatting, so one runs at a time.
    std::u16string Run(const std::u16string& key, const MacroTime& time) const {
        std::lock_guard lock(mutex_);
        auto found = cache_.find(key);
        if (found == cache_.end()) found = cache_.emplace(key, Make(key)).first;
        if (!found->second) return {};
        icu::UnicodeString text;
        found->second->format(WallClock(time), text);
        return ToU16(text);
    }

    std::unique_ptr<icu::DateFormat> Make(const std::u16string& key) const {
        std::unique_ptr<icu::DateFormat> format;
        UErrorCode status = U_ZERO_ERROR;
        if (key.starts_with(u"P")) {
            icu::UnicodeString pattern(key.data() + 1, static_cast<int32_t>(key.size() - 1));
            format = std::make_unique<icu::SimpleDateFormat>(pattern, locale_, status);
        } else if (key == u"long date") {
            format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kLong, locale_));
        } else if (key == u"short date") {
            format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kShort, locale_));
        } else if (key == u"long time") {
            format.reset(icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, locale_));
        } else {
            format.reset(icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale_));
        }
        if (U_FAILURE(status) || !format) return nullptr;
        status = U_ZERO_ERROR;
        auto calendar = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::getGMT()->clone(), locale_, status);
        if (U_FAILURE(status)) return nullptr;
        status = U_ZERO_ERROR;
        calendar->setGregorianChange(-8.64e15, status);  // proleptic: no Julian dates before 1582
        format->adoptCalendar(calendar.release());
        return format;
    }

    icu::Locale locale_;
    mutable std::mutex mutex_;
    mutable std::map<std::u16string, std::unique_ptr<icu::DateFormat>> cache_;
};

}  // namespace

std::unique_ptr<DateFormatter> MakeDateFormatter(std::string_view locale) {
    return std::make_unique<IcuDateFormatter>(ResolveLocale(locale));
}

const DateFormatter& DefaultDateFormatter() {
    static const std::unique_ptr<DateFormatter> formatter = MakeDateFormatter();
    return *formatter;
}

MacroTime LocalNow() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    MacroTime t;
    t.year = local.tm_year + 1900;
    t.month = local.tm_mon + 1;
    t.day = local.tm_mday;
    t.hour = local.tm_hour;
    t.minute = local.tm_min;
    t.second = local.tm_sec > 59 ? 59 : local.tm_sec;  // a leap second reads as :59
    return t;
}

}  // namespace qm
