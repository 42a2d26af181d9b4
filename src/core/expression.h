// The expression tree. It is both what the parser builds and what macro files store: the macro
// file binding reads and writes these very structures, so a macro loaded from disk and an
// expression typed by the user end in the same tree.
//
// One node (`M2::Expression`) is the content of one expression holder: at most one primary,
// then member steps applied left to right, and the literal text when the node is a literal (no
// primary). Parentheses leave no node.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace qm::M2 {

struct Expression;
using ExpressionPtr = std::shared_ptr<Expression>;

// Operator numbers of the evaluator, derived from the operator text once when the node is built.
enum class Operator : std::uint8_t {
    Unknown = 0,
    Assign = 1, AddAssign, SubtractAssign, MultiplyAssign, DivideAssign, ModuloAssign, AndAssign, OrAssign,
    ConcatAssign = 9,
    Add = 10, Subtract, Multiply, Divide, Modulo = 14,
    Equal = 15, NotEqual, Less, Greater, LessOrEqual, GreaterOrEqual = 20,
    And = 21, Or = 22,
    Concat = 23,
    Not = 24,  // unary only
};
Operator OperatorFromText(std::u16string_view text);
inline bool IsAssignment(Operator op) { return op >= Operator::Assign && op <= Operator::ConcatAssign; }

// A word that evaluation may remember in a node (where a variable's slot is, what a call's name
// resolved to), so that a node run in a loop does its lookups once. It is not part of the tree's
// content: copying or assigning a node starts it afresh, and reading, writing and printing a tree
// ignore it. Whoever stores a word must be able to tell a stale one from a valid one. A relaxed
// atomic, so that evaluating one tree from two threads at once would still be free of data races.
class NodeMemo {
public:
    NodeMemo() noexcept = default;
    NodeMemo(const NodeMemo&) noexcept {}
    NodeMemo& operator=(const NodeMemo&) noexcept {
        word_.store(0, std::memory_order_relaxed);
        return *this;
    }

    std::uint64_t Load() const noexcept { return word_.load(std::memory_order_relaxed); }
    void Store(std::uint64_t word) const noexcept { word_.store(word, std::memory_order_relaxed); }

private:
    mutable std::atomic<std::uint64_t> word_{0};
};

// A name held as element text; cdata records how it was read so it is written back the same way.
struct Var {
    std::u16string name;
    bool cdata = false;
    // The variable's slot in the scope it was last read in (see MacroScope::Variable).
    NodeMemo slot{};
};

struct Prop {
    std::u16string name;
    bool cdata = false;
};

struct Call {
    std::u16string name;
    std::vector<ExpressionPtr> args;
    // What the name resolved to, for the call handler (see BuiltinCallHandler).
    NodeMemo target{};
};

struct UnaryOp {
    std::u16string name;  // "!", "+" or "-"
    Operator op = Operator::Unknown;
    ExpressionPtr operand;

    void SetName(std::u16string text);
};

struct BinaryOp {
    std::u16string name;  // any binary or assignment operator spelling
    Operator op = Operator::Unknown;
    ExpressionPtr left;
    ExpressionPtr right;

    void SetName(std::u16string text);
};

struct TernaryOp {
    ExpressionPtr condition;
    ExpressionPtr whenTrue;
    ExpressionPtr whenFalse;
};

// A member step: property access by name, or index access by an expression.
using Member = std::variant<Prop, ExpressionPtr>;

// What the literal text is, decided once when the text is set (the text never changes after).
struct LiteralInfo {
    bool isInteger = false;   // IsIntegerText
    bool isNumeric = false;   // IsNumericText
    bool boolean = false;     // BooleanText
    std::int32_t integer = 0; // ExtractInteger
    double decimal = 0.0;     // ExtractDecimal
};

struct Expression {
    using Primary = std::variant<std::monostate, Var, Call, UnaryOp, BinaryOp, TernaryOp>;

    Primary primary;              // monostate: a literal (or the empty expression)
    std::vector<Member> members;  // applied in order after the primary or literal
    bool cdata = false;           // the literal text arrived as CDATA

    const std::u16string& text() const noexcept { return text_; }
    const LiteralInfo& literal() const noexcept { return literal_; }
    void SetText(std::u16string text);
    void AppendText(std::u16string_view more);  // for readers that deliver text in pieces

    bool IsLiteral() const noexcept { return primary.index() == 0; }
    // No primary, no member steps and no text: the normal form of a missing Return value or
    // Break/Continue count.
    bool IsEmpty() const noexcept { return primary.index() == 0 && members.empty() && text_.empty(); }

private:
    std::u16string text_;
    LiteralInfo literal_;
};

ExpressionPtr MakeLiteral(std::u16string text);

// Deepest nesting of expression nodes accepted from any source (typed text or a macro file).
// Evaluation, printing and destruction recurse over the tree, so a bound keeps them off the end
// of the stack.
inline constexpr int kMaxExpressionDepth = 256;

}  // namespace qm::M2
