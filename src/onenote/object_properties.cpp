#include "onenote/object_properties.h"

#include <ctime>
#include <stdexcept>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/session.h"

namespace qm::onenote {
namespace {

std::u16string_view KindWord(PropertyKind kind) {
    switch (kind) {
        case PropertyKind::String: return msg::kKindString;
        case PropertyKind::Bool: return msg::kKindBool;
        case PropertyKind::Integer: return msg::kKindInteger;
        case PropertyKind::Number: return msg::kKindNumber;
        case PropertyKind::DateTime: return msg::kKindDateTime;
        case PropertyKind::Array: break;
    }
    return msg::kKindArray;
}

// The value converted to the property's kind; throws std::invalid_argument when it has no such
// conversion.
MacroValue Convert(const MacroValue& value, PropertyKind kind) {
    switch (kind) {
        case PropertyKind::String: return MacroValue(value.AsString());
        case PropertyKind::Bool: return MacroValue(value.AsBoolean());
        case PropertyKind::Integer: return MacroValue(value.AsInteger());
        case PropertyKind::Number: return MacroValue(value.AsDecimal());
        case PropertyKind::DateTime: return MacroValue(value.AsTime());
        case PropertyKind::Array: break;
    }
    throw std::invalid_argument("no conversion to an array property");
}

MacroTime FromSystemTime(const xml::SystemTime& t) {
    MacroTime m;
    m.year = t.wYear;
    m.month = t.wMonth;
    m.day = t.wDay;
    m.hour = t.wHour;
    m.minute = t.wMinute;
    m.second = t.wSecond;
    m.millisecond = t.wMilliseconds;
    return m;
}

xml::SystemTime ToSystemTime(const MacroTime& m) {
    auto field = [](std::int32_t v) { return static_cast<std::uint16_t>(v < 0 ? 0 : (v > 0xFFFF ? 0xFFFF : v)); };
    xml::SystemTime t;
    t.wYear = field(m.year);
    t.wMonth = field(m.month);
    t.wDayOfWeek = static_cast<std::uint16_t>(m.DayOfWeek());
    t.wDay = field(m.day);
    t.wHour = field(m.hour);
    t.wMinute = field(m.minute);
    t.wSecond = field(m.second);
    t.wMilliseconds = field(m.millisecond);
    return t;
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

}  // namespace

// --- get and set ------------------------------------------------------------------------------

const PropertyDef* OneNoteObject::FindProperty(std::u16string_view name) const {
    for (const PropertyTable& table : Tables()) {
        for (const PropertyDef& property : table) {
            if (property.name != name) continue;
            if (property.available && !property.available(*this)) continue;
            return &property;
        }
    }
    return nullptr;
}

MacroValue OneNoteObject::GetProperty(std::u16string_view name, bool quiet) {
    const PropertyDef* property = FindProperty(name);
    if (!property) {
        if (quiet && QuietReadsAllowed()) return MacroValue();
        throw MacroError(FormatMessage(msg::kUnknownProperty, {name, TypeName()}));
    }
    if (property->access == Access::WriteOnly) throw MacroError(FormatMessage(msg::kWriteOnlyProperty, {name}));
    return property->get(*this);
}

MacroValue OneNoteObject::CurrentForLog(std::u16string_view name) {
    const PropertyDef* property = FindProperty(name);
    if (property && property->access == Access::WriteOnly) return MacroValue();
    return GetProperty(name, true);
}

void OneNoteObject::SetProperty(std::u16string_view name, const MacroValue& value) {
    LogSink* log = LogOf(session());
    if (log) {
        std::u16string line(msg::kLogModifyingProperty);
        line += name;
        line += msg::kLogModifyingPropertyValue;
        line += CurrentForLog(name).Describe();
        LogLine(log, line);
    }
    const PropertyDef* property = FindProperty(name);
    if (!property) throw MacroError(FormatMessage(msg::kUnknownProperty, {name, TypeName()}));
    if (property->access == Access::ReadOnly || (!property->set && !property->update)) {
        throw MacroError(FormatMessage(msg::kReadOnlyProperty, {name, TypeName()}));
    }
    MacroValue converted;
    if (!property->update) {
        try {
            converted = Convert(value, property->kind);
        } catch (const std::invalid_argument&) {
            throw MacroError(FormatMessage(msg::kInvalidPropertyValue,
                                           {name, TypeName(), value.DescribeShort(), KindWord(property->kind)}));
        }
    }
    bool changed = true;
    if (property->update) {
        changed = property->update(*this, value);
    } else if (property->get && Equals(property->get(*this), converted)) {
        changed = false;
    } else {
        property->set(*this, converted);
    }
    if (changed) Written(*property);
    if (log) LogLine(log, std::u16string(msg::kLogNewValue) + CurrentForLog(name).Describe());
}

MacroValue GetTypeName(OneNoteObject& object) { return MacroValue(object.TypeName()); }

MacroValue ObjectArray(std::span<const ObjectRef> objects) {
    auto array = std::make_shared<MacroArray>();
    array->Reserve(objects.size());
    for (const ObjectRef& object : objects) array->PushBack(MacroValue(object));
    return MacroValue(std::move(array));
}

void LogLine(LogSink* log, std::u16string_view text) {
    if (!log) return;
    log->Write(u"\r\n");
    log->Write(text);
}

// --- attribute values -------------------------------------------------------------------------

MacroValue ToValue(const ON::String& attribute) { return MacroValue(attribute ? *attribute : std::u16string()); }
MacroValue ToValue(const ON::Selection& attribute) { return MacroValue(attribute.value); }
MacroValue ToValue(const ON::Bool& attribute) { return MacroValue(attribute.value); }
MacroValue ToValue(const std::optional<bool>& attribute) { return MacroValue(attribute.value_or(false)); }
MacroValue ToValue(const ON::OptInt& attribute) { return MacroValue(attribute ? attribute->value() : 0); }
MacroValue ToValue(const ON::OptFloat& attribute) { return MacroValue(attribute ? NumberOf(*attribute) : 0.0); }
MacroValue ToValue(const ON::OptDateTime& attribute) {
    return attribute ? MacroValue(MacroTimeOf(*attribute)) : MacroValue();
}

void FromValue(const MacroValue& value, ON::String& attribute) { attribute = value.string(); }
void FromValue(const MacroValue& value, ON::Selection& attribute) { attribute = value.string(); }
void FromValue(const MacroValue& value, ON::Bool& attribute) { attribute = value.boolean(); }
void FromValue(const MacroValue& value, std::optional<bool>& attribute) { attribute = value.boolean(); }
void FromValue(const MacroValue& value, ON::OptInt& attribute) { attribute = ON::Int::Of(value.integer()); }
void FromValue(const MacroValue& value, ON::OptFloat& attribute) { attribute = ON::Float::Of(value.decimal()); }
void FromValue(const MacroValue& value, ON::OptDateTime& attribute) { attribute = OneNoteTime(value.time()); }

double NumberOf(const ON::Float& value) { return ExtractDecimal(value.text); }

// UTC to local: the instant as seconds, broken down by the C library in the local zone.
MacroTime MacroTimeOf(const ON::DateTime& utc) {
    const MacroTime fields = FromSystemTime(utc.time);
    const std::int64_t instant = fields.Instant();
    const std::time_t seconds = static_cast<std::time_t>(FloorDiv(instant, 1000));
    const std::tm* local = std::localtime(&seconds);
    if (!local) return fields;
    MacroTime result;
    result.year = local->tm_year + 1900;
    result.month = local->tm_mon + 1;
    result.day = local->tm_mday;
    result.hour = local->tm_hour;
    result.minute = local->tm_min;
    result.second = local->tm_sec > 59 ? 59 : local->tm_sec;
    result.millisecond = fields.millisecond;
    return result;
}

// Local to UTC: the C library finds the instant of the local fields.
ON::DateTime OneNoteTime(const MacroTime& local) {
    std::tm parts{};
    parts.tm_year = local.year - 1900;
    parts.tm_mon = local.month - 1;
    parts.tm_mday = local.day;
    parts.tm_hour = local.hour;
    parts.tm_min = local.minute;
    parts.tm_sec = local.second;
    parts.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&parts);
    if (seconds == static_cast<std::time_t>(-1)) return ON::DateTime::Of(ToSystemTime(local));
    const MacroTime utc = MacroTime::FromInstant(static_cast<std::int64_t>(seconds) * 1000 + local.millisecond);
    return ON::DateTime::Of(ToSystemTime(utc));
}

}  // namespace qm::onenote
