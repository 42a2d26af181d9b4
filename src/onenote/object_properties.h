// The property machinery every OneNote macro object shares: property tables (name, kind, access,
// how to read and write), the lookup through a type's own table and then its shared groups, the
// get and set steps with their errors and log lines, and the conversions between the binding's
// attribute values and macro values.
//
// Choices made here:
// - An absent string attribute reads as the empty string, an absent number as 0, an absent
//   date-time as the empty value; a boolean reads as its schema default.
// - Date-times: OneNote writes them in UTC. A macro sees them in local time, the reckoning of
//   DateTime_Now, and a date-time written by a macro is taken as local time and stored in UTC.
// - A write converts the value to the property's kind first; a value that has no such conversion
//   (an array, an object, a text that is no date-time) fails with kInvalidPropertyValue and
//   leaves the object unchanged.
// - A write that would store the value the property already has changes nothing: the page or the
//   hierarchy node is not marked changed, so nothing is saved for it.
// - With logging on, a write logs the current value first and the value read back after it. A
//   write-only property has no value to show: both lines show the empty value.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/value.h"
#include "onenote/object_types.h"
#include "onenote/on_schema.h"

namespace qm {
class LogSink;
}

namespace qm::onenote {

class Session;
class OneNoteObject;

enum class PropertyKind : std::uint8_t { String, Bool, Integer, Number, DateTime, Array };
enum class Access : std::uint8_t { ReadOnly, ReadWrite, WriteOnly };

struct PropertyDef {
    std::u16string_view name;
    PropertyKind kind = PropertyKind::String;
    Access access = Access::ReadOnly;
    MacroValue (*get)(OneNoteObject&) = nullptr;
    // Receives the value already converted to `kind`.
    void (*set)(OneNoteObject&, const MacroValue&) = nullptr;
    // Null: always there. Otherwise the property exists only while this says so (the position
    // properties of an object that has no Position).
    bool (*available)(const OneNoteObject&) = nullptr;
    // On a page: the property lives in the page's content (loaded on use, saved with the page)
    // rather than in the hierarchy.
    bool content = false;
    // Instead of `set`, for a property that cannot be read back: converts and stores the value as
    // given and tells whether anything changed.
    bool (*update)(OneNoteObject&, const MacroValue&) = nullptr;
};

using PropertyTable = std::span<const PropertyDef>;

// A macro object over one bound OneNote element.
class OneNoteObject : public MacroObject {
public:
    OneNoteObject(Session& session, ObjectType type) : session_(&session), type_(type) {}

    std::int32_t TypeNumber() const override { return Number(type_); }
    std::u16string TypeName() const override { return std::u16string(onenote::TypeName(type_)); }
    MacroValue GetProperty(std::u16string_view name, bool quiet) override;
    void SetProperty(std::u16string_view name, const MacroValue& value) override;

    ObjectType type() const noexcept { return type_; }
    Session& session() const noexcept { return *session_; }
    // The bound element; null for the notebook root.
    virtual xml::ChildElement* node() const = 0;

    // The property a name finds, in lookup order; null when there is none.
    const PropertyDef* FindProperty(std::u16string_view name) const;
    // The tables searched, own table first.
    virtual std::span<const PropertyTable> Tables() const = 0;

protected:
    // Whether a quiet read of an unknown name yields the empty value (everywhere but the root).
    virtual bool QuietReadsAllowed() const { return true; }
    // Records that a property was written: the page or the hierarchy object is changed.
    virtual void Written(const PropertyDef& property) = 0;

private:
    MacroValue CurrentForLog(std::u16string_view name);

    Session* session_;
    ObjectType type_;
};

// The bound element of an object, as its concrete type.
template <class E>
E& ElementOf(OneNoteObject& object) {
    return static_cast<E&>(*object.node());
}
template <class E>
const E& ElementOf(const OneNoteObject& object) {
    return static_cast<const E&>(*object.node());
}

// --- attribute values and macro values --------------------------------------------------------

MacroValue ToValue(const ON::String& attribute);
MacroValue ToValue(const ON::Selection& attribute);
MacroValue ToValue(const ON::Bool& attribute);
MacroValue ToValue(const std::optional<bool>& attribute);
MacroValue ToValue(const ON::OptInt& attribute);
MacroValue ToValue(const ON::OptFloat& attribute);
MacroValue ToValue(const ON::OptDateTime& attribute);

// `value` has the kind of the attribute's property already (see PropertyDef::set).
void FromValue(const MacroValue& value, ON::String& attribute);
void FromValue(const MacroValue& value, ON::Selection& attribute);
void FromValue(const MacroValue& value, ON::Bool& attribute);
void FromValue(const MacroValue& value, std::optional<bool>& attribute);
void FromValue(const MacroValue& value, ON::OptInt& attribute);
void FromValue(const MacroValue& value, ON::OptFloat& attribute);
void FromValue(const MacroValue& value, ON::OptDateTime& attribute);

template <class T>
constexpr PropertyKind KindOf() {
    if constexpr (std::is_same_v<T, ON::Bool> || std::is_same_v<T, std::optional<bool>>) {
        return PropertyKind::Bool;
    } else if constexpr (std::is_same_v<T, ON::OptInt>) {
        return PropertyKind::Integer;
    } else if constexpr (std::is_same_v<T, ON::OptFloat>) {
        return PropertyKind::Number;
    } else if constexpr (std::is_same_v<T, ON::OptDateTime>) {
        return PropertyKind::DateTime;
    } else {
        return PropertyKind::String;
    }
}

// A number attribute's value as a double, read from its text (no detour through float).
double NumberOf(const ON::Float& value);
// The OneNote date-time of a macro date-time and back (see the file comment).
ON::DateTime OneNoteTime(const MacroTime& local);
MacroTime MacroTimeOf(const ON::DateTime& utc);

template <class E, auto Member>
MacroValue GetAttribute(OneNoteObject& object) {
    return ToValue(ElementOf<E>(object).*Member);
}
template <class E, auto Member>
void SetAttribute(OneNoteObject& object, const MacroValue& value) {
    FromValue(value, ElementOf<E>(object).*Member);
}

// A property bound to one attribute of the element E; its kind follows the attribute's type.
template <class E, auto Member>
constexpr PropertyDef Attribute(std::u16string_view name, Access access) {
    using T = std::remove_cvref_t<decltype(std::declval<E&>().*Member)>;
    return PropertyDef{name, KindOf<T>(), access, &GetAttribute<E, Member>,
                       access == Access::ReadOnly ? nullptr : &SetAttribute<E, Member>};
}

// The property `type`, first in every type's own table.
MacroValue GetTypeName(OneNoteObject& object);
inline constexpr PropertyDef kTypeProperty{u"type", PropertyKind::String, Access::ReadOnly, &GetTypeName};

// An array of objects for a property value.
MacroValue ObjectArray(std::span<const ObjectRef> objects);

// Writes "\r\n" and the text to the run's log, when there is one.
void LogLine(LogSink* log, std::u16string_view text);

}  // namespace qm::onenote
