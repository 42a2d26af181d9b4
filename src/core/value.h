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
// Keys. While the keys are exactly "0", "1", ... "n-1" in element order (an array built by
// PushBack, Array(...) or String_Split, or renumbered by PushFront/PopFront: the common case) the
// array is "dense" and keeps no key text at all: a key is found by reading it as a number and
// written out as decimal text only when asked for. The first key that breaks the sequence (a string
// key, "01", "1.0", a gap) makes the array "keyed": from then on it keeps each element's key text
// and a key-text-ordered map to positions. Renumbering makes it dense again when every key is an
// integer, and so does removing the last element of a keyed array whose nextIndex is back at 0.
//
// nextIndex: the next key an append uses (always the size in a dense array). Creating an element
// under an integer key (IsIntegerText) whose value is >= nextIndex moves nextIndex just past it, so
// an append never reuses a numeric key (after keys 0 and 5 the next append uses 6). PopBack of the
// element whose key is nextIndex - 1 moves nextIndex back to that key, so a stack used with
// PushBack/PopBack keeps the keys 0..n-1. Renumbering (PushFront, PopFront) gives the integer keys
// 0..m-1 in element order and sets nextIndex to m.
//
// Values. Element values are held in place, in one vector in element order: no allocation per
// element. Two uses need more than that:
// - ForEach visits the values the array held when the loop began. Snapshot() shares the value
//   vector with the loop instead of copying it; while a loop holds it, the array copies the vector
//   before its first change (copy on write), so the loop never sees a change.
// - A caller that holds an element while the array may change under it (a built-in's by-reference
//   argument while the later arguments run, a scope's variable) takes a handle with FindOrCreate or
//   Handle: the element's value moves into a cell of its own that the array and the handle share
//   ("boxed"). A boxed element stays put however the array grows, and a removed one lives on in its
//   handle, as a value of its own.
// Plain references (At, ValueAt, FindOrCreateValue, FindValue) stay valid only until the array next changes.
//
// An array can be made to contain itself; such a cycle is never freed (there is no collector), but
// Describe and equality stop at it instead of recursing for ever. Nesting depth is not bounded by
// anything, so Describe, equality and the destructor work without recursion.
class MacroArray {
public:
    using Values = std::vector<MacroValue>;

    // One element as seen from outside: its key text (written out on demand in a dense array) and
    // its value.
    struct Element {
        std::u16string key;
        const MacroValue* value;
    };
    // The elements in element order, each made when it is read.
    class ElementView {
    public:
        class Iterator {
        public:
            Iterator(const MacroArray* array, std::size_t i) : array_(array), i_(i) {}
            Element operator*() const { return (*array_).ElementAt(i_); }
            Iterator& operator++() {
                ++i_;
                return *this;
            }
            bool operator!=(const Iterator& other) const { return i_ != other.i_; }

        private:
            const MacroArray* array_;
            std::size_t i_;
        };
        explicit ElementView(const MacroArray* array) : array_(array) {}
        std::size_t size() const { return array_->size(); }
        bool empty() const { return array_->empty(); }
        Element operator[](std::size_t i) const { return array_->ElementAt(i); }
        Element front() const { return array_->ElementAt(0); }
        Element back() const { return array_->ElementAt(array_->size() - 1); }
        Iterator begin() const { return Iterator(array_, 0); }
        Iterator end() const { return Iterator(array_, array_->size()); }

    private:
        const MacroArray* array_;
    };

    MacroArray() = default;
    // A copy shares the value vector until either side changes it, and shares the boxed elements.
    MacroArray(const MacroArray& other);
    MacroArray(MacroArray&&) noexcept = default;
    MacroArray& operator=(const MacroArray& other);
    MacroArray& operator=(MacroArray&&) noexcept = default;
    ~MacroArray();

    std::size_t size() const noexcept { return values_ ? values_->size() : 0; }
    bool empty() const noexcept { return size() == 0; }
    ElementView elements() const noexcept { return ElementView(this); }
    Element ElementAt(std::size_t i) const;

    // The value at a position; At prepares the array for a change through the reference.
    const MacroValue& ValueAt(std::size_t i) const {
        return !boxes_.empty() && boxes_[i] ? *boxes_[i] : (*values_)[i];
    }
    MacroValue& At(std::size_t i) {
        if (!boxes_.empty() && boxes_[i]) return *boxes_[i];
        return OwnedAt(i);
    }
    // The value at a position that the caller has boxed (Handle): the scope's fast path.
    MacroValue& BoxedAt(std::size_t i) const { return *boxes_[i]; }
    // The key of the element at a position; buffer (24 units) holds the text when the array keeps
    // none.
    std::u16string_view KeyAt(std::size_t i, char16_t* buffer) const;

    // The element under the key, or null.
    const MacroValue* FindValue(std::u16string_view key) const;
    // The element under the key, appended empty when missing.
    MacroValue& FindOrCreateValue(std::u16string_view key);
    // The same element as a handle (boxing it, see above).
    ValueRef FindOrCreate(std::u16string_view key);
    ValueRef Handle(std::size_t i);
    // The element's position, or npos.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    std::size_t IndexOf(std::u16string_view key) const;
    // The position of the element under the key, appended empty when missing.
    std::size_t FindOrCreateIndex(std::u16string_view key);
    // Appends an element under a key that must not exist yet; returns its value.
    MacroValue& Append(std::u16string key, MacroValue value);
    // Appends under the decimal text of the next index.
    void PushBack(MacroValue value);
    // Inserts at the front, then renumbers the integer keys from 0 in element order; string keys stay.
    void PushFront(MacroValue value);
    // Removes and returns the last or first element's value; the array must not be empty. PopFront
    // renumbers the integer keys from 0.
    MacroValue PopBack();
    MacroValue PopFront();
    void Reserve(std::size_t n);

    // The values in element order as they are now, unchanged by later changes to the array: shared
    // with the array until it changes (see above). Null for an empty array.
    std::shared_ptr<const Values> Snapshot() const;

    // Element positions in key-text order (the order of the log and of equality).
    std::vector<std::size_t> KeyOrder() const;

    std::int64_t nextIndex() const noexcept { return nextIndex_; }
    // Whether the keys are exactly "0".."n-1" in element order (see above).
    bool dense() const noexcept { return keys_ == nullptr; }

    friend bool operator==(const MacroArray& left, const MacroArray& right);

private:
    // The key texts of a keyed array: one per element, and the map from text to position.
    struct Keys {
        std::vector<std::u16string> text;
        std::map<std::u16string, std::size_t, std::less<>> positions;
    };

    void Own();
    MacroValue& OwnedAt(std::size_t i);
    void MakeKeyed();
    void AddKeyed(std::u16string key, MacroValue value);
    void PushDense(MacroValue&& value);
    void NoteIntegerKey(std::u16string_view key);
    void Renumber();
    MacroValue TakeValue(std::size_t i);

    std::shared_ptr<Values> values_;  // null until the first element; shared with snapshots only
    std::vector<ValueRef> boxes_;     // empty, or one per element: non-null where the value is boxed
    std::unique_ptr<Keys> keys_;      // null while dense
    std::int64_t nextIndex_ = 0;
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
