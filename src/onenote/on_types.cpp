#include <charconv>
#include <cmath>
#include <limits>

#include "onenote/on_schema.h"

namespace qm::ON {

namespace {

// The ASCII text of a number; anything else makes it unreadable.
bool Narrow(std::u16string_view text, char* out, std::size_t capacity, std::size_t& length) {
    while (!text.empty() && (text.front() == u' ' || text.front() == u'\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == u' ' || text.back() == u'\t')) text.remove_suffix(1);
    if (!text.empty() && text.front() == u'+') text.remove_prefix(1);
    if (text.size() >= capacity) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] >= 0x80) return false;
        out[i] = static_cast<char>(text[i]);
    }
    length = text.size();
    return true;
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// OneNote's form, "2023-04-01T09:30:00.000Z", with a year that does not start with 0 (so that
// writing the parsed value gives the same text).
bool IsOneNoteForm(std::u16string_view text) {
    static constexpr std::u16string_view kShape = u"dddd-dd-ddTdd:dd:dd.dddZ";
    if (text.size() != kShape.size() || text[0] == u'0') return false;
    for (std::size_t i = 0; i < kShape.size(); ++i) {
        if (kShape[i] == u'd' ? !IsDigit(text[i]) : text[i] != kShape[i]) return false;
    }
    return true;
}

std::uint16_t Digits(std::u16string_view text, std::size_t at, std::size_t count) {
    unsigned value = 0;
    for (std::size_t i = at; i < at + count; ++i) value = value * 10 + (text[i] - u'0');
    return static_cast<std::uint16_t>(value);
}

void PutDigits(std::u16string& out, unsigned value, int width) {
    char16_t buffer[8];
    int n = 0;
    do {
        buffer[n++] = static_cast<char16_t>(u'0' + value % 10);
        value /= 10;
    } while (value != 0 && n < 8);
    for (int i = n; i < width; ++i) out += u'0';
    while (n > 0) out += buffer[--n];
}

}  // namespace

float Float::value() const {
    char buffer[64];
    std::size_t length = 0;
    if (!Narrow(text, buffer, sizeof buffer, length)) return 0;
    float result = 0;
    const auto [end, error] = std::from_chars(buffer, buffer + length, result);
    if (error == std::errc::result_out_of_range) {
        double wide = 0;
        std::from_chars(buffer, buffer + length, wide);
        return wide < 0 ? -std::numeric_limits<float>::max() : std::numeric_limits<float>::max();
    }
    return error == std::errc() ? result : 0;
}

Float Float::Of(double value) {
    if (!std::isfinite(value)) value = 0;
    const double limit = std::numeric_limits<float>::max();
    if (value > limit) value = limit;
    if (value < -limit) value = -limit;
    const double single = static_cast<float>(value);
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, single);
    std::string digits(buffer, error == std::errc() ? end : buffer);
    if (digits.find_first_of(".e") == std::string::npos) digits += ".0";
    Float result;
    result.text.assign(digits.begin(), digits.end());
    return result;
}

std::int32_t Int::value() const { return xml::ParseXmlInt(text); }

Int Int::Of(std::int32_t value) { return Int{xml::FormatXmlInt(value)}; }

DateTime DateTime::Of(const xml::SystemTime& time) { return DateTime{time, {}}; }

void FromXml(std::u16string_view text, Float& out) { out.text.assign(text); }

void FromXml(std::u16string_view text, Int& out) { out.text.assign(text); }

void FromXml(std::u16string_view text, DateTime& out) {
    if (IsOneNoteForm(text)) {
        out.time = xml::SystemTime{Digits(text, 0, 4), Digits(text, 5, 2), 0, Digits(text, 8, 2),
                                   Digits(text, 11, 2), Digits(text, 14, 2), Digits(text, 17, 2),
                                   Digits(text, 20, 3)};
        out.text.clear();
    } else {
        out.time = xml::ParseXmlDateTime(text);
        out.text.assign(text);
    }
}

const std::u16string& ToXml(const Float& value) { return value.text; }

const std::u16string& ToXml(const Int& value) { return value.text; }

std::u16string ToXml(const DateTime& value) {
    if (!value.text.empty()) return value.text;
    const xml::SystemTime& t = value.time;
    std::u16string out;
    out.reserve(24);
    PutDigits(out, t.wYear, 2);
    out += u'-';
    PutDigits(out, t.wMonth, 2);
    out += u'-';
    PutDigits(out, t.wDay, 2);
    out += u'T';
    PutDigits(out, t.wHour, 2);
    out += u':';
    PutDigits(out, t.wMinute, 2);
    out += u':';
    PutDigits(out, t.wSecond, 2);
    out += u'.';
    PutDigits(out, t.wMilliseconds, 3);
    out += u'Z';
    return out;
}

xml::ChildElement* ParentElement(const xml::ChildElement& element) {
    for (xml::Container* c = element.owner; c != nullptr; c = c->owner) {
        if (auto* parent = dynamic_cast<xml::ChildElement*>(c)) return parent;
    }
    return nullptr;
}

namespace {
const std::u16string kAutomatic = u"automatic";
}  // namespace

void ApplyNewElementDefaults(Bullet& e) { e.fontColor = kAutomatic; }

void ApplyNewElementDefaults(Number& e) {
    e.font = u"Verdana";
    e.fontColor = kAutomatic;
    e.language = u"1033";
}

void ApplyNewElementDefaults(OE& e) { e.alignment = u"left"; }

void ApplyNewElementDefaults(Image& e) { e.format = u"auto"; }

void ApplyNewElementDefaults(OCRData& e) { e.lang = u"EN-US"; }

void ApplyNewElementDefaults(PageSettings& e) { e.color = kAutomatic; }

void ApplyNewElementDefaults(TagDef& e) { e.fontColor = kAutomatic; }

void ApplyNewElementDefaults(QuickStyleDef& e) {
    e.fontColor = kAutomatic;
    e.highlightColor = kAutomatic;
}

void ApplyNewElementDefaults(Horizontal& e) { e.color = kAutomatic; }

void ApplyNewElementDefaults(Vertical& e) { e.color = kAutomatic; }

void ApplyNewElementDefaults(Margin& e) { e.color = kAutomatic; }

}  // namespace qm::ON
