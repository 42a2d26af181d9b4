// The run-time value of the macro language: a tagged value of nine kinds whose numbers are fixed,
// since the evaluator and the built-ins switch on them. Also the keyed array container that a
// value of kind array holds, shared by reference.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/time.h"

namespace qm {

enum class Kind : std::int32_t {
    Empty = 0,
    Time = 1,
    String = 2,
    Boolean = 3,
    Integer = 4,
    Unsigned = 5,
    Decimal = 6,
    Array = 7,
    Object = 8,
};

class MacroValue;
class MacroArray;
class MacroObject;

using ValueRef = std::shared_ptr<MacroValue>;
using ArrayRef = std::shared_ptr<MacroArray>;
using ObjectRef = std::shared_ptr<MacroObject>;

class MacroValue {
public:
    MacroValue() = default;
    explicit MacroValue(std::u16string text) : v_(std::move(text)) {}
    explicit MacroValue(std::u16string_view text) : v_(std::u16string(text)) {}
    explicit MacroValue(const char16_t* text) : v_(std::u16string(text)) {}
    explicit MacroValue(bool b) : v_(b) {}
    explicit MacroValue(std::int32_t i) : v_(i) {}
    explicit MacroValue(std::uint32_t u) : v_(u) {}
    explicit MacroValue(double d) : v_(d) {}
    explicit MacroValue(const MacroTime& t) : v_(t) {}
    explicit MacroValue(ArrayRef a) : v_(std::move(a)) {}
    explicit MacroValue(ObjectRef o) : v_(std::move(o)) {}

    Kind kind() const noexcept { return static_cast<Kind>(v_.index()); }
    bool IsEmpty() const noexcept { return v_.index() == 0; }

    // Payload access; the kind must match.
    const std::u16string& string() const { return std::get<std::u16string>(v_); }
    bool boolean() const { return std::get<bool>(v_); }
    std::int32_t integer() const { return std::get<std::int32_t>(v_); }
    std::uint32_t unsignedInteger() const { return std::get<std::uint32_t>(v_); }
    double decimal() const { return std::get<double>(v_); }
    const MacroTime& time() const { return std::get<MacroTime>(v_); }
    const ArrayRef& array() const { return std::get<ArrayRef>(v_); }
    const ObjectRef& object() const { return std::get<ObjectRef>(v_); }
    // The string payload for changing it in place (the evaluator appends to a stored string
    // instead of copying it); the kind must be string.
    std::u16string& mutableString() { return std::get<std::u16string>(v_); }
    // Makes the value the integer i, reusing the payload when it is an integer already.
    void SetInteger(std::int32_t i) {
        if (auto* p = std::get_if<std::int32_t>(&v_)) {
            *p = i;
        } else {
            v_ = i;
        }
    }

    // Conversions. A value of the target kind converts to itself; the conversions that have no
    // meaning (an array to a number, a number to a time, ...) throw std::invalid_argument: the
    // evaluator checks kinds first and reports the user-facing message.
    std::int32_t AsInteger() const;
    double AsDecimal() const;
    std::u16string AsString() const;
    bool AsBoolean() const;
    MacroTime AsTime() const;
    // The empty value becomes a new empty array in place; an array returns itself.
    ArrayRef AsArray();

    // Whether the value takes part in integer or numeric arithmetic.
    bool IsInteger() const;
    bool IsNumeric() const;

    // The log text: "12 (integer)", "abc (string)", "<empty>", "Array of size (2):..."
    std::u16string Describe() const;
    // As Describe, but an array gives only its head "Array of size (N)": the form quoted in error
    // messages, which must stay short whatever the array holds.
    std::u16string DescribeShort() const;

private:
    std::variant<std::monostate, MacroTime, std::u16string, bool, std::int32_t, std::uint32_t, double, ArrayRef,
                 ObjectRef>
        v_;
};

// Whether two texts are equal, code unit for code unit: what == means on UTF-16 strings, as one
// memory comparison (the standard library compares char16_t strings a unit at a time, which
// shows on the interpreter's name checks).
inline bool SameText(std::u16string_view a, std::u16string_view b) noexcept {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

// Text rules shared by values and by literal classification at parse time.
bool IsIntegerText(std::u16string_view text);
bool IsNumericText(std::u16string_view text);
bool BooleanText(std::u16string_view text);  // true only for "true", "True" and "1"
// Reads the longest numeric prefix after leading white space, as a wide input stream does; 0 when
// the text does not start with a number. Out-of-range integers saturate.
std::int32_t ExtractInteger(std::u16string_view text);
double ExtractDecimal(std::u16string_view text);
// The decimal text of a double: shortest round-trip form in fixed notation, so it reads back as
// numeric ("3.5", "1", "100000000000000000000").
std::u16string DecimalText(double d);
// The decimal digits of an integer, with a leading "-" when negative.
std::u16string IntegerText(std::int64_t i);
// Writes the decimal digits of i into buffer (at least 24 units) and returns the view of them:
// the allocation-free form used for keys and arithmetic.
std::u16string_view IntegerText(std::int64_t i, char16_t* buffer);
// The lower-case form of one UTF-16 code unit, as the platform lower-cases (on Windows the
// system's invariant mapping; elsewhere a table of the ASCII, Latin-1, Latin Extended-A, Greek and
// Cyrillic letters, every other unit unchanged): the case folding of the case-insensitive
// orderings. The length of a text never changes.
char16_t LowerCaseUnit(char16_t c);

// Whole-value comparisons: the right value is converted to the left value's kind first.
// Our choices: Equals never throws (a right value with no conversion to the
// left kind, an unparsable date-time text included, is simply unequal); the empty value, which has
// no conversion target, equals only the empty value and the empty string, and sorts before every
// other value. LessThan/GreaterThan throw std::invalid_argument for arrays and objects.
bool Equals(const MacroValue& left, const MacroValue& right);
bool LessThan(const MacroValue& left, const MacroValue& right);
bool GreaterThan(const MacroValue& left, const MacroValue& right);
bool LessThanNoCase(const MacroValue& left, const MacroValue& right);
bool GreaterThanNoCase(const MacroValue& left, const MacroValue& right);

// An ordered, keyed collection. Every element has exactly one key; numeric keys are decimal texts,
// so the index 3 and the key "3" name one element.
//
// Representation: elements in insertion order, each with its key text, plus a key-text-ordered map
// to element indices. While the keys are exactly "0", "1", ... "n-1" in element order (an array
// built by appending, the common case) the array is "dense": the map is not kept and a key is
// found by reading it as a number, so appending costs no map node and no key comparison. Any
// other key turns the array sparse (the map is built then); renumbering makes it dense again when
// every key is an integer.
//
// nextIndex: the next key an append uses. Creating an element under an integer key (IsIntegerText)
// whose value is >= nextIndex moves nextIndex just past it, so an append never reuses a numeric
// key (as PHP does: after keys 0 and 5 the next append uses 6). PopBack of the element whose key is
// nextIndex - 1 moves nextIndex back to that key, so a stack used with PushBack/PopBack keeps the
// keys 0..n-1. Renumbering (PushFront, PopFront) gives the integer keys 0..m-1 in element order and
// sets nextIndex to m.
//
// Arrays hold their elements by shared reference, so an array can be made to contain itself; such a
// cycle is never freed (there is no collector), but Describe and equality stop at it instead of
// recursing for ever. Nesting depth is not bounded by anything, so Describe, equality and the
// destructor work without recursion.
class MacroArray {
public:
    struct Element {
        std::u16string key;
        ValueRef value;
    };

    MacroArray() = default;
    MacroArray(const MacroArray&) = default;  // shallow: the copy shares the element values
    MacroArray(MacroArray&&) noexcept = default;
    MacroArray& operator=(const MacroArray&) = default;
    MacroArray& operator=(MacroArray&&) noexcept = default;
    ~MacroArray();

    std::size_t size() const noexcept { return elements_.size(); }
    bool empty() const noexcept { return elements_.empty(); }
    const std::vector<Element>& elements() const noexcept { return elements_; }

    // The element under the key, or null.
    ValueRef Find(std::u16string_view key) const;
    // The element under the key, appended empty when missing.
    ValueRef FindOrCreate(std::u16string_view key);
    // Appends under the decimal text of the next index.
    void PushBack(MacroValue value);
    // Inserts at the front, then renumbers the integer keys from 0 in element order; string keys stay.
    void PushFront(MacroValue value);
    // Removes and returns the last or first element's value; the array must not be empty. PopFront
    // renumbers the integer keys from 0.
    MacroValue PopBack();
    MacroValue PopFront();

    // Element indices in key-text order (the order of the log and of equality).
    std::vector<std::size_t> KeyOrder() const;

    std::int64_t nextIndex() const noexcept { return nextIndex_; }

    // Raw access for the evaluator's hot path, without reference-count traffic. The pointer or
    // reference stays valid while the element stays in the array (elements are held by shared
    // reference, so a growing array does not move them).
    MacroValue* FindValue(std::u16string_view key) const;
    MacroValue& FindOrCreateValue(std::u16string_view key);
    // The element's position in elements(), or npos.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t IndexOf(std::u16string_view key) const;
    // The position of the element under the key, appended empty when missing.
    std::size_t FindOrCreateIndex(std::u16string_view key);
    // Appends an element under a key that must not exist yet; returns its value.
    MacroValue& Append(std::u16string key, MacroValue value);
    void Reserve(std::size_t n) { elements_.reserve(n); }
    // Whether the keys are exactly "0".."n-1" in element order (see above).
    bool dense() const noexcept { return dense_; }

    friend bool operator==(const MacroArray& left, const MacroArray& right);

private:
    void MakeSparse();
    void NoteIntegerKey(std::u16string_view key);
    void Renumber();
    void PushDense(MacroValue&& value);

    std::vector<Element> elements_;
    std::map<std::u16string, std::size_t, std::less<>> keys_;  // kept only while !dense_
    std::int64_t nextIndex_ = 0;
    bool dense_ = true;
};

// A macro object of the object model (a OneNote element, a dialog box): the evaluator reads and
// writes its properties by name and compares objects for equality.
class MacroObject : public std::enable_shared_from_this<MacroObject> {
public:
    virtual ~MacroObject() = default;
    virtual std::int32_t TypeNumber() const = 0;
    virtual std::u16string TypeName() const = 0;
    // An unknown name raises the object model's error unless quiet, when it yields empty.
    virtual MacroValue GetProperty(std::u16string_view name, bool quiet) = 0;
    virtual void SetProperty(std::u16string_view name, const MacroValue& value) = 0;
    // Object equality; called only when both type numbers are equal.
    virtual bool SameAs(const MacroObject& other) const = 0;
    // The text of the value in the macro log (its kind label included).
    virtual std::u16string Describe() const = 0;
};

}  // namespace qm
