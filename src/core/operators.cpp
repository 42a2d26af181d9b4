// The operators of the expression language over evaluated operands. Literal operands
// use the LiteralInfo computed when the tree was built, so numbers in literals are never re-read
// from text, and no operator builds a string value unless its result is a string.
#include <cmath>
#include <limits>

#include "core/error.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operators.h"

namespace qm::detail {

using M2::Operator;

Operand::Operand(MacroValue value) : form_(Form::Scalar), kind_(value.kind()), p_{} {
    switch (kind_) {
        case Kind::Empty: break;
        case Kind::Boolean: p_.boolean = value.boolean(); break;
        case Kind::Integer: p_.integer = value.integer(); break;
        case Kind::Unsigned: p_.unsignedValue = value.unsignedInteger(); break;
        case Kind::Decimal: p_.decimal = value.decimal(); break;
        default:
            form_ = Form::Owned;
            new (&owned_) MacroValue(std::move(value));
            break;
    }
}

Operand::Operand(Operand&& other) noexcept
    : form_(other.form_), kind_(other.kind_), p_(other.p_), holder_(std::move(other.holder_)) {
    if (form_ == Form::Owned) new (&owned_) MacroValue(std::move(other.owned_));
}

Operand& Operand::operator=(Operand&& other) noexcept {
    if (this == &other) return *this;
    if (form_ == Form::Owned) owned_.~MacroValue();
    form_ = other.form_;
    kind_ = other.kind_;
    p_ = other.p_;
    holder_ = std::move(other.holder_);
    if (form_ == Form::Owned) new (&owned_) MacroValue(std::move(other.owned_));
    return *this;
}

MacroValue Operand::ScalarValue() const {
    switch (kind_) {
        case Kind::Boolean: return MacroValue(p_.boolean);
        case Kind::Integer: return MacroValue(p_.integer);
        case Kind::Unsigned: return MacroValue(p_.unsignedValue);
        case Kind::Decimal: return MacroValue(p_.decimal);
        default: return MacroValue();
    }
}

void Operand::Materialize() {
    if (form_ != Form::Ref) return;
    // Copy first: the holder may be the value's only owner, and the assignment drops it.
    Operand copy(*p_.ref);
    *this = std::move(copy);
}

NumberClass Operand::Classify() const {
    switch (form_) {
        case Form::Literal: {
            const M2::LiteralInfo& info = p_.literal->literal();
            return info.isInteger ? NumberClass::Integer : (info.isNumeric ? NumberClass::Decimal : NumberClass::None);
        }
        case Form::Scalar: return kind_ == Kind::Decimal ? NumberClass::Decimal : NumberClass::Integer;
        default: break;
    }
    const MacroValue& v = value();
    switch (v.kind()) {
        case Kind::Empty:
        case Kind::Boolean:
        case Kind::Integer:
        case Kind::Unsigned: return NumberClass::Integer;
        case Kind::Decimal: return NumberClass::Decimal;
        case Kind::String: {
            const std::u16string& s = v.string();
            if (IsIntegerText(s)) return NumberClass::Integer;
            return IsNumericText(s) ? NumberClass::Decimal : NumberClass::None;
        }
        default: return NumberClass::None;
    }
}

std::int32_t Operand::ToInteger() const {
    switch (form_) {
        case Form::Literal: return p_.literal->literal().integer;
        case Form::Scalar:
            switch (kind_) {
                case Kind::Integer: return p_.integer;
                case Kind::Boolean: return p_.boolean ? 1 : 0;
                case Kind::Unsigned: return static_cast<std::int32_t>(p_.unsignedValue);
                case Kind::Decimal: return MacroValue(p_.decimal).AsInteger();
                default: return 0;
            }
        default: return value().AsInteger();
    }
}

double Operand::ToDecimal() const {
    switch (form_) {
        case Form::Literal: return p_.literal->literal().decimal;
        case Form::Scalar:
            switch (kind_) {
                case Kind::Integer: return p_.integer;
                case Kind::Boolean: return p_.boolean ? 1.0 : 0.0;
                case Kind::Unsigned: return p_.unsignedValue;
                case Kind::Decimal: return p_.decimal;
                default: return 0.0;
            }
        default: return value().AsDecimal();
    }
}

MacroValue Operand::Take() && {
    switch (form_) {
        case Form::Literal: return MacroValue(p_.literal->text());
        case Form::Ref: return *p_.ref;
        case Form::Scalar: return ScalarValue();
        default: return std::move(owned_);
    }
}

std::u16string Operand::DescribeShort() const {
    switch (form_) {
        case Form::Literal: return p_.literal->text() + u" (string)";
        case Form::Scalar: return ScalarValue().DescribeShort();
        default: return value().DescribeShort();
    }
}

std::u16string Operand::Describe() const {
    switch (form_) {
        case Form::Literal: return p_.literal->text() + u" (string)";
        case Form::Scalar: return ScalarValue().Describe();
        default: return value().Describe();
    }
}

bool TextOf(const Operand& operand, char16_t* buffer, std::u16string& scratch, std::u16string_view& text) {
    if (operand.IsLiteral()) {
        text = operand.literal().text();
        return true;
    }
    if (operand.form_ == Operand::Form::Scalar) {
        switch (operand.kind_) {
            case Kind::Boolean: text = operand.p_.boolean ? u"true" : u"false"; return true;
            case Kind::Integer: text = IntegerText(operand.p_.integer, buffer); return true;
            case Kind::Unsigned: text = IntegerText(operand.p_.unsignedValue, buffer); return true;
            case Kind::Decimal: scratch = DecimalText(operand.p_.decimal); text = scratch; return true;
            default: text = {}; return true;
        }
    }
    const MacroValue& v = operand.value();
    switch (v.kind()) {
        case Kind::Empty: text = {}; return true;
        case Kind::String: text = v.string(); return true;
        case Kind::Boolean: text = v.boolean() ? u"true" : u"false"; return true;
        case Kind::Integer: text = IntegerText(v.integer(), buffer); return true;
        case Kind::Unsigned: text = IntegerText(v.unsignedInteger(), buffer); return true;
        case Kind::Decimal: scratch = DecimalText(v.decimal()); text = scratch; return true;
        case Kind::Time: scratch = v.time().ToText(); text = scratch; return true;
        default: return false;
    }
}

bool TruthOf(const Operand& operand, std::u16string_view operatorText) {
    if (operand.IsLiteral()) return operand.literal().literal().boolean;
    if (operand.form_ == Operand::Form::Scalar) {
        switch (operand.kind_) {
            case Kind::Boolean: return operand.p_.boolean;
            case Kind::Integer: return operand.p_.integer != 0;
            case Kind::Unsigned: return operand.p_.unsignedValue != 0;
            case Kind::Decimal: return operand.p_.decimal != 0.0;
            default: return false;
        }
    }
    const MacroValue& v = operand.value();
    switch (v.kind()) {
        case Kind::Empty: return false;
        case Kind::String: return BooleanText(v.string());
        case Kind::Boolean: return v.boolean();
        case Kind::Integer: return v.integer() != 0;
        case Kind::Unsigned: return v.unsignedInteger() != 0;
        case Kind::Decimal: return v.decimal() != 0.0;
        default: throw MacroError(FormatMessage(msg::kOperandNeedsBoolean, {operatorText, v.DescribeShort()}));
    }
}

void AppendText(const Operand& operand, std::u16string_view operatorText, std::u16string& out) {
    char16_t buffer[24];
    std::u16string scratch;
    std::u16string_view text;
    if (!TextOf(operand, buffer, scratch, text)) {
        throw MacroError(FormatMessage(msg::kOperandNeedsString, {operatorText, operand.DescribeShort()}));
    }
    out += text;
}

// Our choices for the integer corner cases: "%" by zero raises kModuloByZero (a message of its
// own: "Division by zero" belongs to "/"); the quotient -2147483648 / -1 wraps to
// -2147483648 like every other overflow, and the remainder -2147483648 % -1 is 0. Neither traps.
std::int32_t IntegerArithmetic(Operator op, std::int32_t a, std::int32_t b) {
    const auto ua = static_cast<std::uint32_t>(a);
    const auto ub = static_cast<std::uint32_t>(b);
    switch (op) {
        case Operator::Add: return static_cast<std::int32_t>(ua + ub);
        case Operator::Subtract: return static_cast<std::int32_t>(ua - ub);
        case Operator::Multiply: return static_cast<std::int32_t>(ua * ub);
        case Operator::Divide:
            if (b == 0) throw MacroError(std::u16string(msg::kDivisionByZero));
            if (b == -1) return static_cast<std::int32_t>(0u - ua);
            return a / b;
        case Operator::Modulo:
            if (b == 0) throw MacroError(std::u16string(msg::kModuloByZero));
            if (b == -1) return 0;
            return a % b;
        default: return 0;
    }
}

namespace {

double DecimalArithmetic(Operator op, double a, double b) {
    switch (op) {
        case Operator::Add: return a + b;
        case Operator::Subtract: return a - b;
        case Operator::Multiply: return a * b;
        case Operator::Divide:
            if (b == 0.0) throw MacroError(std::u16string(msg::kDivisionByZero));
            return a / b;
        default: return 0.0;
    }
}

// Both texts are found first, so the result is allocated once at its final size.
Operand Concatenate(std::u16string_view name, const Operand& left, const Operand& right) {
    char16_t bufferA[24], bufferB[24];
    std::u16string scratchA, scratchB;
    std::u16string_view x, y;
    if (!TextOf(left, bufferA, scratchA, x)) {
        throw MacroError(FormatMessage(msg::kOperandNeedsString, {name, left.DescribeShort()}));
    }
    if (!TextOf(right, bufferB, scratchB, y)) {
        throw MacroError(FormatMessage(msg::kOperandNeedsString, {name, right.DescribeShort()}));
    }
    std::u16string out;
    out.reserve(x.size() + y.size());
    out += x;
    out += y;
    return Operand(MacroValue(std::move(out)));
}

Operand Arithmetic(Operator op, std::u16string_view name, const Operand& left, const Operand& right) {
    NumberClass a = left.Classify();
    NumberClass b = right.Classify();
    if (a == NumberClass::None || b == NumberClass::None) {
        if (op == Operator::Add) return Concatenate(name, left, right);
        throw MacroError(FormatMessage(msg::kOperandsNeedNumeric, {name}));
    }
    if ((a == NumberClass::Integer && b == NumberClass::Integer) || op == Operator::Modulo) {
        return Operand::Integer(IntegerArithmetic(op, left.ToInteger(), right.ToInteger()));
    }
    return Operand::Decimal(DecimalArithmetic(op, left.ToDecimal(), right.ToDecimal()));
}

bool Ordered(Operator op, int c) {
    switch (op) {
        case Operator::Equal: return c == 0;
        case Operator::NotEqual: return c != 0;
        case Operator::Less: return c < 0;
        case Operator::Greater: return c > 0;
        case Operator::LessOrEqual: return c <= 0;
        case Operator::GreaterOrEqual: return c >= 0;
        default: return false;
    }
}

bool Comparison(Operator op, std::u16string_view name, const Operand& left, const Operand& right) {
    // 1. Numbers: integers when both are integers, doubles otherwise.
    NumberClass a = left.Classify();
    NumberClass b = right.Classify();
    if (a != NumberClass::None && b != NumberClass::None) {
        if (a == NumberClass::Integer && b == NumberClass::Integer) {
            std::int32_t x = left.ToInteger();
            std::int32_t y = right.ToInteger();
            return Ordered(op, x < y ? -1 : (x > y ? 1 : 0));
        }
        double x = left.ToDecimal();
        double y = right.ToDecimal();
        switch (op) {  // direct, so that NaN compares unequal and unordered
            case Operator::Equal: return x == y;
            case Operator::NotEqual: return x != y;
            case Operator::Less: return x < y;
            case Operator::Greater: return x > y;
            case Operator::LessOrEqual: return x <= y;
            case Operator::GreaterOrEqual: return x >= y;
            default: return false;
        }
    }
    // 2 and 4. Objects: equality between two objects; an object and a non-object are unequal; no
    // order.
    const bool leftObject = left.kind() == Kind::Object;
    const bool rightObject = right.kind() == Kind::Object;
    if (leftObject || rightObject) {
        if (op != Operator::Equal && op != Operator::NotEqual) {
            throw MacroError(FormatMessage(msg::kCompareObjects, {name}));
        }
        bool equal = leftObject && rightObject && Equals(left.value(), right.value());
        return op == Operator::Equal ? equal : !equal;
    }
    // Arrays have no text: reported instead of the internal conversion error.
    if (left.kind() == Kind::Array || right.kind() == Kind::Array) {
        throw MacroError(FormatMessage(msg::kCompareArrays, {name}));
    }
    // 3. Strings, by UTF-16 code units.
    char16_t bufferA[24], bufferB[24];
    std::u16string scratchA, scratchB;
    std::u16string_view x, y;
    TextOf(left, bufferA, scratchA, x);
    TextOf(right, bufferB, scratchB, y);
    int c = x.compare(y);
    return Ordered(op, c);
}

}  // namespace

Operand ConcatenateOnto(Operand&& left, std::u16string_view name, const Operand& right) {
    // A string the left side built (the result of an inner "&") is the start of the result.
    if (left.form_ == Operand::Form::Owned && left.owned_.kind() == Kind::String) {
        AppendText(right, name, left.owned_.mutableString());
        return std::move(left);
    }
    return Concatenate(name, left, right);
}

Operand ApplyBinarySlow(Operator op, std::u16string_view name, const Operand& left, const Operand& right) {
    switch (op) {
        case Operator::Add:
        case Operator::Subtract:
        case Operator::Multiply:
        case Operator::Divide:
        case Operator::Modulo: return Arithmetic(op, name, left, right);
        case Operator::Equal:
        case Operator::NotEqual:
        case Operator::Less:
        case Operator::Greater:
        case Operator::LessOrEqual:
        case Operator::GreaterOrEqual: return Operand::Boolean(Comparison(op, name, left, right));
        case Operator::And: {
            bool x = TruthOf(left, name);
            bool y = TruthOf(right, name);
            return Operand::Boolean(x && y);
        }
        case Operator::Or: {
            bool x = TruthOf(left, name);
            bool y = TruthOf(right, name);
            return Operand::Boolean(x || y);
        }
        case Operator::Concat: return Concatenate(name, left, right);
        default: throw MacroError(FormatMessage(msg::kUnknownOperator, {u"binary operator", name}));
    }
}

}  // namespace qm::detail
