#include "core/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include "core/case_map.h"
#include "core/text.h"

namespace qm {

namespace {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// White space as a wide input stream skips it (iswspace in the "C" locale plus the no-break and
// ideographic spaces, which the original platform's classification also counts).
bool IsStreamSpace(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0' || c == u'\u3000' || c == u'\u2028' ||
           c == u'\u2029' || (c >= u'\u2000' && c <= u'\u200A');
}

[[noreturn]] void Invalid(const char* what, const MacroValue& value) {
    throw std::invalid_argument(std::string("MacroValue: no conversion of ") + ToUtf8(value.DescribeShort()) +
                                " to " + what);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Text rules

bool IsIntegerText(std::u16string_view text) {
    std::size_t i = 0;
    if (text.size() >= 2 && text[0] == u'-') i = 1;
    if (i == text.size()) return false;  // "" (and "-" is caught by the size test above)
    for (; i < text.size(); ++i) {
        if (!IsDigit(text[i])) return false;
    }
    return true;
}

// The rule: an optional leading "-" (on a text of at least two units), then only digits and
// at most one ".", not the lone ".". Choice: the part after the minus must also hold a digit, so
// "-." is not numeric either (it would read as 0 and print back as an operator and a property).
bool IsNumericText(std::u16string_view text) {
    std::size_t i = 0;
    if (text.size() >= 2 && text[0] == u'-') i = 1;
    if (i == text.size()) return false;
    bool point = false;
    bool digit = false;
    for (; i < text.size(); ++i) {
        char16_t c = text[i];
        if (IsDigit(c)) {
            digit = true;
        } else if (c == u'.') {
            if (point) return false;
            point = true;
        } else {
            return false;
        }
    }
    return digit;
}

bool BooleanText(std::u16string_view text) { return text == u"true" || text == u"True" || text == u"1"; }

// A wide input stream reading an int: skip white space, an optional sign, then the longest run of
// decimal digits; no digit at all is a failure that stores 0; a value out of range stores the
// nearest limit.
std::int32_t ExtractInteger(std::u16string_view text) {
    std::size_t i = 0;
    while (i < text.size() && IsStreamSpace(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) {
        negative = text[i] == u'-';
        ++i;
    }
    if (i >= text.size() || !IsDigit(text[i])) return 0;
    std::int64_t value = 0;
    constexpr std::int64_t kLimit = std::int64_t{1} << 32;
    for (; i < text.size() && IsDigit(text[i]); ++i) {
        if (value < kLimit) value = value * 10 + (text[i] - u'0');
    }
    if (negative) value = -value;
    if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
    if (value < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}

// A wide input stream reading a double: skip white space, then the longest prefix of the form
// [sign] digits [. digits] [e|E [sign] digits] with at least one mantissa digit; 0.0 when there is
// none. Overflow gives the largest finite value of the sign (what the stream stores).
double ExtractDecimal(std::u16string_view text) {
    std::size_t i = 0;
    while (i < text.size() && IsStreamSpace(text[i])) ++i;
    std::string buffer;
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) {
        if (text[i] == u'-') buffer.push_back('-');
        ++i;
    }
    bool digits = false;
    for (; i < text.size() && IsDigit(text[i]); ++i) {
        buffer.push_back(static_cast<char>(text[i]));
        digits = true;
    }
    if (i < text.size() && text[i] == u'.') {
        buffer.push_back('.');
        ++i;
        for (; i < text.size() && IsDigit(text[i]); ++i) {
            buffer.push_back(static_cast<char>(text[i]));
            digits = true;
        }
    }
    if (!digits) return 0.0;
    if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < text.size() && (text[j] == u'-' || text[j] == u'+')) {
            exponent.push_back(static_cast<char>(text[j]));
            ++j;
        }
        if (j < text.size() && IsDigit(text[j])) {
            for (; j < text.size() && IsDigit(text[j]); ++j) exponent.push_back(static_cast<char>(text[j]));
            buffer += exponent;
        }
    }
    double value = 0.0;
    const char* first = buffer.data();
    const char* last = buffer.data() + buffer.size();
    auto [ptr, ec] = std::from_chars(first, last, value);
    if (ec == std::errc::result_out_of_range) {
        // from_chars leaves the value alone on range errors; strtod tells overflow (HUGE_VAL) from
        // underflow (a tiny or zero value). The buffer uses '.', as the "C" locale does.
        double v = std::strtod(buffer.c_str(), nullptr);
        if (std::isinf(v)) return v < 0 ? -std::numeric_limits<double>::max() : std::numeric_limits<double>::max();
        return v;
    }
    if (ec != std::errc()) return 0.0;
    return value;
}

std::u16string_view IntegerText(std::int64_t i, char16_t* buffer) {
    char16_t* end = buffer + 24;
    char16_t* p = end;
    std::uint64_t magnitude = i < 0 ? 0 - static_cast<std::uint64_t>(i) : static_cast<std::uint64_t>(i);
    do {
        *--p = static_cast<char16_t>(u'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (i < 0) *--p = u'-';
    return std::u16string_view(p, static_cast<std::size_t>(end - p));
}

std::u16string IntegerText(std::int64_t i) {
    char16_t buffer[24];
    return std::u16string(IntegerText(i, buffer));
}

std::u16string DecimalText(double d) {
    if (std::isnan(d)) return u"nan";
    if (std::isinf(d)) return d < 0 ? u"-inf" : u"inf";
    char buffer[400];  // fixed notation of DBL_MAX has 309 digits
    auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, d, std::chars_format::fixed);
    if (ec != std::errc()) return u"0";
    return std::u16string(buffer, ptr);
}

char16_t LowerCaseUnit(char16_t c) {
    if (c < 0x80) return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
    return platform::LowerCaseBeyondAscii(c);
}

// ---------------------------------------------------------------------------------------------
// MacroValue conversions

std::int32_t MacroValue::AsInteger() const {
    switch (kind()) {
        case Kind::Empty: return 0;
        case Kind::String: return ExtractInteger(*std::get_if<std::u16string>(&v_));
        case Kind::Boolean: return *std::get_if<bool>(&v_) ? 1 : 0;
        case Kind::Integer: return *std::get_if<std::int32_t>(&v_);
        case Kind::Unsigned: return static_cast<std::int32_t>(*std::get_if<std::uint32_t>(&v_));
        case Kind::Decimal: {
            // Nearest integer, halves away from zero, then the low 32 bits (modular, no UB for
            // any finite double); NaN and the infinities have no integer and give 0.
            double d = *std::get_if<double>(&v_);
            if (!std::isfinite(d)) return 0;
            double r = std::round(d);
            if (r >= -2147483648.0 && r <= 2147483647.0) return static_cast<std::int32_t>(r);
            double m = std::fmod(r, 4294967296.0);
            if (m < 0) m += 4294967296.0;
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(m));
        }
        default: Invalid("integer", *this);
    }
}

double MacroValue::AsDecimal() const {
    switch (kind()) {
        case Kind::Empty: return 0.0;
        case Kind::String: return ExtractDecimal(*std::get_if<std::u16string>(&v_));
        case Kind::Boolean: return *std::get_if<bool>(&v_) ? 1.0 : 0.0;
        case Kind::Integer: return *std::get_if<std::int32_t>(&v_);
        case Kind::Unsigned: return *std::get_if<std::uint32_t>(&v_);
        case Kind::Decimal: return *std::get_if<double>(&v_);
        default: Invalid("decimal", *this);
    }
}

std::u16string MacroValue::AsString() const {
    switch (kind()) {
        case Kind::Empty: return std::u16string();
        case Kind::Time: return std::get_if<MacroTime>(&v_)->ToText();
        case Kind::String: return *std::get_if<std::u16string>(&v_);
        case Kind::Boolean: return *std::get_if<bool>(&v_) ? u"true" : u"false";
        case Kind::Integer: return IntegerText(*std::get_if<std::int32_t>(&v_));
        case Kind::Unsigned: return IntegerText(*std::get_if<std::uint32_t>(&v_));
        case Kind::Decimal: return DecimalText(*std::get_if<double>(&v_));
        default: Invalid("string", *this);
    }
}

bool MacroValue::AsBoolean() const {
    switch (kind()) {
        case Kind::Empty: return false;
        case Kind::String: return BooleanText(*std::get_if<std::u16string>(&v_));
        case Kind::Boolean: return *std::get_if<bool>(&v_);
        case Kind::Integer: return *std::get_if<std::int32_t>(&v_) != 0;
        case Kind::Unsigned: return *std::get_if<std::uint32_t>(&v_) != 0;
        case Kind::Decimal: return *std::get_if<double>(&v_) != 0.0;
        default: Invalid("boolean", *this);
    }
}

MacroTime MacroValue::AsTime() const {
    switch (kind()) {
        case Kind::Time: return *std::get_if<MacroTime>(&v_);
        case Kind::String: {
            const std::u16string& text = *std::get_if<std::u16string>(&v_);
            if (auto t = MacroTime::Parse(text)) return *t;
            throw std::invalid_argument("MacroValue: the string \"" + ToUtf8(text) +
                                        "\" is not a date-time (expected YYYY-MM-DD[THH:MM[:SS[.fff]]])");
        }
        default: Invalid("time", *this);
    }
}

ArrayRef MacroValue::AsArray() {
    if (kind() == Kind::Empty) v_ = std::make_shared<MacroArray>();
    if (kind() != Kind::Array) Invalid("array", *this);
    return *std::get_if<ArrayRef>(&v_);
}

bool MacroValue::IsInteger() const {
    switch (kind()) {
        case Kind::Empty:
        case Kind::Boolean:
        case Kind::Integer:
        case Kind::Unsigned: return true;
        case Kind::String: return IsIntegerText(*std::get_if<std::u16string>(&v_));
        default: return false;
    }
}

bool MacroValue::IsNumeric() const {
    switch (kind()) {
        case Kind::Empty:
        case Kind::Boolean:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::Decimal: return true;
        case Kind::String: return IsNumericText(*std::get_if<std::u16string>(&v_));
        default: return false;
    }
}

// ---------------------------------------------------------------------------------------------
// Describe

namespace {

void DescribeScalar(const MacroValue& value, std::u16string& out) {
    switch (value.kind()) {
        case Kind::Empty: out += u"<empty>"; return;
        case Kind::Time: out += value.time().ToText(); out += u" (time)"; return;
        case Kind::String: out += value.string(); out += u" (string)"; return;
        case Kind::Boolean: out += value.boolean() ? u"true" : u"false"; out += u" (boolean)"; return;
        case Kind::Integer: {
            char16_t buffer[24];
            out += IntegerText(value.integer(), buffer);
            out += u" (integer)";
            return;
        }
        case Kind::Unsigned: {
            char16_t buffer[24];
            out += IntegerText(value.unsignedInteger(), buffer);
            out += u" (unsigned integer)";
            return;
        }
        case Kind::Decimal: out += DecimalText(value.decimal()); out += u" (decimal)"; return;
        case Kind::Object: out += value.object() ? value.object()->Describe() : u"<null object>"; return;
        case Kind::Array: return;  // handled by the caller
    }
}

void DescribeArrayHead(const MacroArray& array, std::u16string& out) {
    char16_t buffer[24];
    out += u"Array of size (";
    out += IntegerText(static_cast<std::int64_t>(array.size()), buffer);
    out += u")";
    if (!array.empty()) out += u":";
}

// An array's description, walked with an explicit stack: nesting has no bound. An array that
// already stands on the current path (an array holding itself) prints as "<cycle>" instead of
// its elements.
void DescribeArray(const MacroArray& root, std::u16string& out) {
    struct Frame {
        const MacroArray* array;
        std::vector<std::size_t> order;
        std::size_t next = 0;
    };
    std::vector<Frame> stack;
    DescribeArrayHead(root, out);
    stack.push_back(Frame{&root, root.KeyOrder()});
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.order.size()) {
            stack.pop_back();
            continue;
        }
        const std::size_t position = frame.order[frame.next++];
        char16_t buffer[24];
        out += u"\r\n";
        out.append(stack.size(), u'\t');
        out += u"[";
        out += frame.array->KeyAt(position, buffer);
        out += u"]: ";
        const MacroValue& value = frame.array->ValueAt(position);
        if (value.kind() != Kind::Array || !value.array()) {
            DescribeScalar(value, out);
            continue;
        }
        const MacroArray* inner = value.array().get();
        bool cycle = std::any_of(stack.begin(), stack.end(), [&](const Frame& f) { return f.array == inner; });
        if (cycle) {
            out += u"<cycle>";
            continue;
        }
        DescribeArrayHead(*inner, out);
        stack.push_back(Frame{inner, inner->KeyOrder()});
    }
}

}  // namespace

std::u16string MacroValue::Describe() const {
    std::u16string out;
    if (kind() == Kind::Array) {
        if (const ArrayRef& a = array()) DescribeArray(*a, out);
        else out += u"Array of size (0)";
    } else {
        DescribeScalar(*this, out);
    }
    return out;
}

std::u16string MacroValue::DescribeShort() const {
    std::u16string out;
    if (kind() == Kind::Array) {
        char16_t buffer[24];
        out += u"Array of size (";
        out += IntegerText(array() ? static_cast<std::int64_t>(array()->size()) : 0, buffer);
        out += u")";
    } else {
        DescribeScalar(*this, out);
    }
    return out;
}

// ---------------------------------------------------------------------------------------------
// Whole-value comparisons

namespace {

bool ScalarKind(Kind k) { return k != Kind::Array && k != Kind::Object; }

// Converts right to the kind of left and reports the three-way comparison (-1, 0, 1) for the
// ordered kinds. Throws std::invalid_argument where no order or no conversion exists.
int Compare(const MacroValue& left, const MacroValue& right) {
    switch (left.kind()) {
        case Kind::Empty:
            // The empty value has no conversion target of its own: it sorts before every value that
            // is not empty and equals only the empty value.
            return right.IsEmpty() ? 0 : -1;
        case Kind::Time: {
            std::int64_t a = left.time().Instant();
            std::int64_t b = right.AsTime().Instant();
            return a < b ? -1 : (a > b ? 1 : 0);
        }
        case Kind::String: {
            int c = right.kind() == Kind::String ? left.string().compare(right.string())
                                                 : left.string().compare(right.AsString());
            return c < 0 ? -1 : (c > 0 ? 1 : 0);
        }
        case Kind::Boolean: {
            int a = left.boolean() ? 1 : 0;
            int b = right.AsBoolean() ? 1 : 0;
            return a < b ? -1 : (a > b ? 1 : 0);
        }
        case Kind::Integer: {
            std::int32_t a = left.integer();
            std::int32_t b = right.AsInteger();
            return a < b ? -1 : (a > b ? 1 : 0);
        }
        case Kind::Unsigned: {
            std::uint32_t a = left.unsignedInteger();
            std::uint32_t b = static_cast<std::uint32_t>(right.AsInteger());
            return a < b ? -1 : (a > b ? 1 : 0);
        }
        case Kind::Decimal: {
            double a = left.decimal();
            double b = right.AsDecimal();
            if (a < b) return -1;
            if (a > b) return 1;
            return a == b ? 0 : 2;  // 2: unordered (NaN)
        }
        default:
            throw std::invalid_argument("MacroValue: arrays and objects have no order");
    }
}

bool ObjectsEqual(const MacroValue& left, const MacroValue& right) {
    if (right.kind() != Kind::Object) return false;
    const ObjectRef& a = left.object();
    const ObjectRef& b = right.object();
    if (!a || !b) return a == b;
    if (a.get() == b.get()) return true;
    return a->TypeNumber() == b->TypeNumber() && a->SameAs(*b);
}

// Array equality without recursion: nested arrays are compared through an explicit stack. A pair
// of arrays already being compared further up counts as equal (the only consistent answer for
// arrays that contain themselves).
bool ArraysEqual(const MacroArray& left, const MacroArray& right);

bool ValuesEqual(const MacroValue& left, const MacroValue& right) {
    switch (left.kind()) {
        case Kind::Array:
            if (right.kind() != Kind::Array) return false;
            if (!left.array() || !right.array()) return left.array() == right.array();
            return ArraysEqual(*left.array(), *right.array());
        case Kind::Object: return ObjectsEqual(left, right);
        case Kind::Time:
            if (right.kind() != Kind::Time && right.kind() != Kind::String) return false;
            if (right.kind() == Kind::String && !MacroTime::Parse(right.string())) return false;
            return Compare(left, right) == 0;
        case Kind::Empty:
            // Choice: the empty value equals the empty value and every scalar whose text is empty.
            if (right.IsEmpty()) return true;
            return right.kind() == Kind::String && right.string().empty();
        default:
            if (!ScalarKind(right.kind())) return false;
            if (right.kind() == Kind::Time && left.kind() != Kind::String) return false;
            return Compare(left, right) == 0;
    }
}

bool ArraysEqual(const MacroArray& left, const MacroArray& right) {
    struct Frame {
        const MacroArray* left;
        const MacroArray* right;
        std::size_t next = 0;
    };
    if (&left == &right) return true;
    if (left.size() != right.size()) return false;
    std::vector<Frame> stack;
    stack.push_back(Frame{&left, &right});
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.left->size()) {
            stack.pop_back();
            continue;
        }
        const std::size_t position = frame.next++;
        // Two dense arrays of one size have the same keys at the same positions.
        char16_t buffer[24];
        const std::size_t at = frame.left->dense() && frame.right->dense()
                                   ? position
                                   : frame.right->IndexOf(frame.left->KeyAt(position, buffer));
        if (at == MacroArray::npos) return false;
        const MacroValue* other = &frame.right->ValueAt(at);
        const MacroValue& mine = frame.left->ValueAt(position);
        if (mine.kind() != Kind::Array || other->kind() != Kind::Array || !mine.array() || !other->array()) {
            if (mine.kind() == Kind::Array) {
                if (other->kind() != Kind::Array || mine.array() != other->array()) return false;
                continue;
            }
            if (!ValuesEqual(mine, *other)) return false;
            continue;
        }
        const MacroArray* a = mine.array().get();
        const MacroArray* b = other->array().get();
        if (a == b) continue;
        if (a->size() != b->size()) return false;
        bool onPath = std::any_of(stack.begin(), stack.end(),
                                  [&](const Frame& f) { return f.left == a && f.right == b; });
        if (onPath) continue;
        stack.push_back(Frame{a, b});
    }
    return true;
}

}  // namespace

// Equals never throws: a right value that has no conversion to the left value's kind (an array
// against a number, a string that is not a date-time against a time) is simply not equal.
bool Equals(const MacroValue& left, const MacroValue& right) { return ValuesEqual(left, right); }

bool LessThan(const MacroValue& left, const MacroValue& right) { return Compare(left, right) == -1; }

bool GreaterThan(const MacroValue& left, const MacroValue& right) {
    if (left.IsEmpty()) return false;
    return Compare(left, right) == 1;
}

namespace {

int CompareNoCase(std::u16string_view a, std::u16string_view b) {
    std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        char16_t x = LowerCaseUnit(a[i]);
        char16_t y = LowerCaseUnit(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

}  // namespace

bool LessThanNoCase(const MacroValue& left, const MacroValue& right) {
    if (left.kind() != Kind::String) return LessThan(left, right);
    if (right.kind() == Kind::String) return CompareNoCase(left.string(), right.string()) < 0;
    return CompareNoCase(left.string(), right.AsString()) < 0;
}

bool GreaterThanNoCase(const MacroValue& left, const MacroValue& right) {
    if (left.kind() != Kind::String) return GreaterThan(left, right);
    if (left.string().empty()) return false;
    if (right.kind() == Kind::String) return CompareNoCase(left.string(), right.string()) > 0;
    return CompareNoCase(left.string(), right.AsString()) > 0;
}

bool operator==(const MacroArray& left, const MacroArray& right) { return ArraysEqual(left, right); }

}  // namespace qm
