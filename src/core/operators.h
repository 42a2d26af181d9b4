// Internal to the evaluator: the evaluated operand and the operators over it. Not a public
// interface; only evaluator.cpp and operators.cpp include it.
#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include "core/expression.h"
#include "core/value.h"

namespace qm::detail {

// How an operand takes part in arithmetic: IsInteger, else IsNumeric, else neither.
enum class NumberClass : std::uint8_t { None, Decimal, Integer };

// An evaluated operand, kept in one of four forms so that the hot path builds no value:
// - a literal node: its text and the LiteralInfo computed when the tree was built;
// - a reference to a stored value (a variable or an array element) read in place. It stays valid
//   until the next evaluation that can have side effects; whoever holds an operand across such an
//   evaluation calls Materialize first. An element reached through a temporary array keeps the
//   element alive through `holder`;
// - a scalar of its own (empty, boolean, integer, unsigned, decimal): no variant, no allocation;
// - any other value of its own (a string, an array, an object, a time).
class Operand {
public:
    Operand() noexcept : form_(Form::Scalar), kind_(Kind::Empty), p_{} {}
    explicit Operand(MacroValue value);
    static Operand Literal(const M2::Expression& node) noexcept {
        Operand o(Form::Literal, Kind::String);
        o.p_.literal = &node;
        return o;
    }
    static Operand Ref(const MacroValue& value, ValueRef holder = nullptr) noexcept {
        Operand o(Form::Ref, Kind::Empty);
        o.p_.ref = &value;
        o.holder_ = std::move(holder);
        return o;
    }
    static Operand Integer(std::int32_t i) noexcept {
        Operand o(Form::Scalar, Kind::Integer);
        o.p_.integer = i;
        return o;
    }
    static Operand Boolean(bool b) noexcept {
        Operand o(Form::Scalar, Kind::Boolean);
        o.p_.boolean = b;
        return o;
    }
    static Operand Decimal(double d) noexcept {
        Operand o(Form::Scalar, Kind::Decimal);
        o.p_.decimal = d;
        return o;
    }

    Operand(Operand&& other) noexcept;
    Operand& operator=(Operand&& other) noexcept;
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;
    ~Operand() {
        if (form_ == Form::Owned) owned_.~MacroValue();
    }

    bool IsLiteral() const noexcept { return form_ == Form::Literal; }
    bool IsRef() const noexcept { return form_ == Form::Ref; }
    bool HasHolder() const noexcept { return holder_ != nullptr; }
    const M2::Expression& literal() const noexcept { return *p_.literal; }
    // The value of a reference or of an owned non-scalar; not for literals and scalars (test kind()
    // first: only strings, times, arrays and objects come this way, and strings may be literals).
    const MacroValue& value() const noexcept { return form_ == Form::Ref ? *p_.ref : owned_; }
    Kind kind() const noexcept {
        switch (form_) {
            case Form::Ref: return p_.ref->kind();
            case Form::Owned: return owned_.kind();
            default: return kind_;  // literal: String
        }
    }

    NumberClass Classify() const;
    std::int32_t ToInteger() const;  // Classify() != None
    double ToDecimal() const;        // Classify() != None
    // The fast path of integer arithmetic: true, with the number, for an integer value or an
    // integer literal.
    bool IntegerOf(std::int32_t& out) const noexcept {
        switch (form_) {
            case Form::Literal:
                out = p_.literal->literal().integer;
                return p_.literal->literal().isInteger;
            case Form::Scalar:
                out = p_.integer;
                return kind_ == Kind::Integer;
            case Form::Ref:
                if (p_.ref->kind() != Kind::Integer) return false;
                out = p_.ref->integer();
                return true;
            default: return false;
        }
    }

    // Stores the operand into a slot: an integer in place, anything else through Take.
    void StoreInto(MacroValue& slot) && {
        if (form_ == Form::Scalar && kind_ == Kind::Integer) {
            slot.SetInteger(p_.integer);
        } else {
            slot = std::move(*this).Take();
        }
    }

    // Turns a reference into a value of its own (a copy), so that later evaluations cannot change
    // or free what the operand holds.
    void Materialize();
    // The operand as a value: the literal's text as a string, a copy of a referenced value.
    MacroValue Take() &&;
    // "abc (string)", "Array of size (3)": for error messages.
    std::u16string DescribeShort() const;
    std::u16string Describe() const;

private:
    enum class Form : std::uint8_t { Literal, Ref, Scalar, Owned };
    Operand(Form form, Kind kind) noexcept : form_(form), kind_(kind), p_{} {}
    MacroValue ScalarValue() const;

    friend bool TextOf(const Operand&, char16_t*, std::u16string&, std::u16string_view&);
    friend Operand ConcatenateOnto(Operand&&, std::u16string_view, const Operand&);
    friend bool TruthOf(const Operand&, std::u16string_view);

    Form form_;
    Kind kind_;  // of a scalar
    union Payload {
        const M2::Expression* literal;
        const MacroValue* ref;
        std::int32_t integer;
        std::uint32_t unsignedValue;
        double decimal;
        bool boolean;
    } p_;  // trivially copyable: moved by copying the whole union
    union {
        MacroValue owned_;  // constructed only in the Owned form
    };
    ValueRef holder_;
};

// The text of a scalar operand (AsString), as a view into the operand, into `buffer` (at least 24
// units) or into `scratch`. Returns false for an array or an object, which have no text.
bool TextOf(const Operand& operand, char16_t* buffer, std::u16string& scratch, std::u16string_view& text);

// The truth value (AsBoolean); throws kOperandNeedsBoolean with `operatorText` for an operand that
// has none.
bool TruthOf(const Operand& operand, std::u16string_view operatorText);

// Appends the text of a scalar operand to `out`; throws kOperandNeedsString otherwise.
void AppendText(const Operand& operand, std::u16string_view operatorText, std::u16string& out);

// The "&" operator on evaluated operands: as ApplyBinary, but a left operand that is a string of
// its own (the result of an inner "&", as in `"a" & $x & "b"`) is extended in place instead of
// copied, so a chain of concatenations allocates its text about once.
Operand ConcatenateOnto(Operand&& left, std::u16string_view name, const Operand& right);

// The non-assignment binary operators (10-23). `name` is the operator's text, quoted in messages.
// And/Or here are the non-short-circuit combination (compound assignments).
Operand ApplyBinarySlow(M2::Operator op, std::u16string_view name, const Operand& left, const Operand& right);

// + - * on two integers, wrapping around (computed unsigned: no signed overflow); false for every
// other operator.
inline bool WrappingArithmetic(M2::Operator op, std::int32_t a, std::int32_t b, std::int32_t& out) noexcept {
    const auto ua = static_cast<std::uint32_t>(a);
    const auto ub = static_cast<std::uint32_t>(b);
    switch (op) {
        case M2::Operator::Add: out = static_cast<std::int32_t>(ua + ub); return true;
        case M2::Operator::Subtract: out = static_cast<std::int32_t>(ua - ub); return true;
        case M2::Operator::Multiply: out = static_cast<std::int32_t>(ua * ub); return true;
        default: return false;
    }
}

// ApplyBinary with the hot case inline: two integers under + - * or a comparison.
inline Operand ApplyBinary(M2::Operator op, std::u16string_view name, const Operand& left, const Operand& right) {
    std::int32_t a, b;
    if (left.IntegerOf(a) && right.IntegerOf(b)) {
        std::int32_t result;
        if (WrappingArithmetic(op, a, b, result)) return Operand::Integer(result);
        switch (op) {
            case M2::Operator::Equal: return Operand::Boolean(a == b);
            case M2::Operator::NotEqual: return Operand::Boolean(a != b);
            case M2::Operator::Less: return Operand::Boolean(a < b);
            case M2::Operator::Greater: return Operand::Boolean(a > b);
            case M2::Operator::LessOrEqual: return Operand::Boolean(a <= b);
            case M2::Operator::GreaterOrEqual: return Operand::Boolean(a >= b);
            // By zero and by -1 out of line (see IntegerArithmetic); otherwise plain C++ division,
            // which truncates toward zero as the language does.
            case M2::Operator::Divide:
                if (b != 0 && b != -1) return Operand::Integer(a / b);
                break;
            case M2::Operator::Modulo:
                if (b != 0 && b != -1) return Operand::Integer(a % b);
                break;
            default: break;
        }
    }
    return ApplyBinarySlow(op, name, left, right);
}

// Arithmetic on signed 32-bit integers with wrap-around; "/" and "%" by zero throw.
std::int32_t IntegerArithmetic(M2::Operator op, std::int32_t a, std::int32_t b);

}  // namespace qm::detail
