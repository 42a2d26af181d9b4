// Evaluation of expression trees.
//
// Decisions made here:
// - Reading an array element under a missing key yields the empty value and does not create the
//   element; reading an index of the empty value (an unset variable) yields the empty value too,
//   as if it were an empty array. An assignment creates what its target needs: a missing element is
//   created, and an empty variable or element that is indexed becomes an empty array in place, so
//   `$groups[$k][0] = $p` works on a fresh variable.
// - Call arguments that are a variable followed only by index steps are passed with their slot
//   (Argument::slot), so built-ins such as Array_PushBack($groups[$k], $p) can write through them.
//   Such an argument is resolved like an assignment target: a missing element is created empty
//   (variables are created on reading anyway), an empty variable or element indexed there becomes
//   an array.
// - Order of an assignment: the index expressions of the target, left to right; then the right
//   side; then the target is resolved (elements created, intermediate properties read); then the
//   current value is read for a compound operator; then the store. So a right side that fails
//   leaves nothing created or stored. A property step in the middle of a target is read once with
//   GetProperty (not quiet); an empty value it returns cannot become an array (it is not stored
//   anywhere) and is reported as "Expected an array at index access".
// - Compound assignments take their operator text ("+=") in messages; "&&=" and "||=" evaluate
//   their right side always (there is nothing to short-circuit: the right side comes first).
// - Log layout: "\tEvaluating expression: " before the evaluation, "\tNew Value: " right after the
//   store (property targets included: the value given to SetProperty), "\t\tValue: " after the
//   whole evaluation. A failing evaluation leaves only its first line.
// - An assignment's value is the stored value; `$a = $b = 3` stores the string 3 in both.
// - Operands of an array or object where a text or a truth value is needed, array comparisons and
//   a non-scalar index get messages of their own (messages.h), never the internal conversion error.
// - "%" by zero and the quotient and remainder of -2147483648 by -1: see IntegerArithmetic in
//   operators.cpp ("Modulo by zero"; wrap to -2147483648; remainder 0).
// - A left operand is the value it had before its right side ran: `$x + ($x = 10)` with $x = 1 is
//   11. Operands are read in place (no copy) while the right side cannot change anything.
//
// Performance: this is the interpreter's hot path. Operands are detail::Operand (operators.h): a
// literal node read through its precomputed LiteralInfo, a stored value read in place, or a scalar
// of its own; integer + - * and comparisons are inline; plain variables and operators skip the
// logging layer; variable lookups go through MacroScope's cache; `&=` and string `+=` onto a
// stored string append in place.
#include "core/evaluator.h"

#include <array>
#include <atomic>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "core/error.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/operators.h"
#include "core/parser.h"

namespace qm {

namespace {

using detail::NumberClass;
using detail::Operand;
using M2::Expression;
using M2::Operator;

constexpr std::u16string_view kUnaryOperatorCategory = u"unary operator";
constexpr std::u16string_view kBinaryOperatorCategory = u"binary operator";

// A missing child (possible only in a hand-made or damaged tree) evaluates as the empty literal.
const Expression kEmptyNode;
inline const Expression& Node(const M2::ExpressionPtr& p) { return p ? *p : kEmptyNode; }

// Whether evaluating the node can change or free stored values: literals, variables and index
// chains with literal or variable indices cannot. Deliberately shallow (no recursion): anything
// else counts as having side effects, which only costs a copy.
bool IsPure(const Expression& node) {
    if (node.primary.index() > 1) return false;  // not a literal or a variable
    for (const M2::Member& member : node.members) {
        const auto* index = std::get_if<M2::ExpressionPtr>(&member);
        if (!index) return false;  // a property read runs object-model code
        const Expression& i = Node(*index);
        if (!i.members.empty() || i.primary.index() > 1) return false;
    }
    return true;
}

// A variable followed only by index steps: passed to a call with its slot.
bool IsSlotArgument(const Expression& node) {
    if (!std::holds_alternative<M2::Var>(node.primary)) return false;
    for (const M2::Member& member : node.members) {
        if (!std::holds_alternative<M2::ExpressionPtr>(member)) return false;
    }
    return true;
}

Operator BinaryOperatorOf(const M2::BinaryOp& b) {
    return b.op != Operator::Unknown ? b.op : M2::OperatorFromText(b.name);
}

Operator UnaryOperatorOf(const M2::UnaryOp& u) {
    return u.op != Operator::Unknown ? u.op : M2::OperatorFromText(u.name);
}

Operator CompoundBase(Operator op) {
    switch (op) {
        case Operator::AddAssign: return Operator::Add;
        case Operator::SubtractAssign: return Operator::Subtract;
        case Operator::MultiplyAssign: return Operator::Multiply;
        case Operator::DivideAssign: return Operator::Divide;
        case Operator::ModuloAssign: return Operator::Modulo;
        case Operator::AndAssign: return Operator::And;
        case Operator::OrAssign: return Operator::Or;
        case Operator::ConcatAssign: return Operator::Concat;
        default: return Operator::Unknown;
    }
}

[[noreturn]] void ThrowExpectedObject(const std::u16string& description, const Expression& node) {
    throw MacroError(FormatMessage(msg::kExpectedObject, {description, PrintText(node)}));
}

[[noreturn]] void ThrowExpectedArray(const std::u16string& description, const Expression& node) {
    throw MacroError(FormatMessage(msg::kExpectedArray, {description, PrintText(node)}));
}

[[noreturn]] void ThrowIndexNeedsKey(const Operand& key, const Expression& node) {
    throw MacroError(FormatMessage(msg::kIndexNeedsKey, {key.DescribeShort(), PrintText(node)}));
}

// The key text of an evaluated index.
struct KeyText {
    char16_t buffer[24];
    std::u16string scratch;
    std::u16string_view text;
};

// Target keys of an assignment, evaluated before the right side; four fit without allocation.
class KeyList {
public:
    void Add(std::u16string_view key) {
        if (count_ < inline_.size()) {
            inline_[count_].assign(key);
        } else {
            more_.emplace_back(key);
        }
        ++count_;
    }
    const std::u16string& operator[](std::size_t i) const {
        return i < inline_.size() ? inline_[i] : more_[i - inline_.size()];
    }

private:
    std::array<std::u16string, 4> inline_;
    std::vector<std::u16string> more_;
    std::size_t count_ = 0;
};

class Walker {
public:
    Walker(MacroScope& scope, CallHandler* calls, LogSink* log) : scope_(scope), calls_(calls), log_(log) {}

    Operand Eval(const Expression& node, bool logged) {
        if (node.members.empty()) {
            switch (node.primary.index()) {
                case 0:
                    // A literal is never logged and needs no work: its info was computed with the tree.
                    return Operand::Literal(node);
                case 1:
                    // A variable: read in place.
                    if (!(logged && log_)) return Operand::Ref(scope_.Variable(*std::get_if<M2::Var>(&node.primary)));
                    break;
                case 4:
                    // An operator: straight to it when there is nothing to log around it.
                    if (!(logged && log_)) return EvalBinary(*std::get_if<M2::BinaryOp>(&node.primary), false);
                    break;
                default: break;
            }
        }
        return EvalNode(node, logged);
    }

private:
    // Out of line, so that the fast paths of Eval above stay small enough to inline.
    [[gnu::noinline]] Operand EvalNode(const Expression& node, bool logged) {
        const bool log = logged && log_ != nullptr;
        if (log) LogLine(msg::kLogEvaluating, PrintText(node));
        Operand result = EvalPrimary(node, logged);
        if (!node.members.empty()) ApplyMembers(node, result);
        if (log) LogLine(msg::kLogValue, result.Describe());
        return result;
    }

    void LogLine(std::u16string_view prefix, const std::u16string& text) {
        std::u16string line;
        line.reserve(prefix.size() + text.size() + 2);
        line += prefix;
        line += text;
        line += u"\r\n";
        log_->Write(line);
    }

    Operand EvalPrimary(const Expression& node, bool logged) {
        switch (node.primary.index()) {
            case 0: return Operand::Literal(node);
            case 1: return Operand::Ref(scope_.Variable(std::get<M2::Var>(node.primary)));
            case 2: return EvalCall(std::get<M2::Call>(node.primary));
            case 3: return EvalUnary(std::get<M2::UnaryOp>(node.primary));
            case 4: return EvalBinary(std::get<M2::BinaryOp>(node.primary), logged);
            default: {
                const auto& t = std::get<M2::TernaryOp>(node.primary);
                Operand condition = Eval(Node(t.condition), false);
                bool chosen = detail::TruthOf(condition, u"?");
                // The chosen branch inherits the logging request.
                return Eval(Node(chosen ? t.whenTrue : t.whenFalse), logged);
            }
        }
    }

    // Property and index steps, in order, on a value being read.
    void ApplyMembers(const Expression& node, Operand& current) {
        for (const M2::Member& member : node.members) {
            if (const auto* prop = std::get_if<M2::Prop>(&member)) {
                if (current.kind() != Kind::Object || !current.value().object()) {
                    ThrowExpectedObject(current.DescribeShort(), node);
                }
                ObjectRef object = current.value().object();
                current = Operand(object->GetProperty(prop->name, false));
                continue;
            }
            const Expression& indexNode = Node(std::get<M2::ExpressionPtr>(member));
            if (!IsPure(indexNode)) current.Materialize();
            Operand index = Eval(indexNode, false);
            const Kind kind = current.kind();
            if (kind == Kind::Empty) continue;  // the unset value reads as an empty array
            if (kind != Kind::Array || !current.value().array()) ThrowExpectedArray(current.DescribeShort(), node);
            KeyText key;
            if (!detail::TextOf(index, key.buffer, key.scratch, key.text)) ThrowIndexNeedsKey(index, node);
            const MacroArray& array = *current.value().array();
            const std::size_t i = array.IndexOf(key.text);
            if (i == MacroArray::npos) {
                current = Operand();
                continue;
            }
            const MacroValue& element = array.ValueAt(i);
            // An element of a stored array stays put until the next side effect, like its array;
            // an element of a temporary array is kept alive by the operand, which holds the array.
            Operand next;
            if (current.IsRef() && !current.HasHolder()) {
                next = Operand::Ref(element);
            } else {
                next = Operand::Ref(element, ValueRef(current.value().array(), const_cast<MacroValue*>(&element)));
            }
            current = std::move(next);
        }
    }

    Operand EvalUnary(const M2::UnaryOp& unary) {
        const Operator op = UnaryOperatorOf(unary);
        if (op != Operator::Not && op != Operator::Add && op != Operator::Subtract) {
            throw MacroError(FormatMessage(msg::kUnknownOperator, {kUnaryOperatorCategory, unary.name}));
        }
        Operand operand = Eval(Node(unary.operand), false);
        if (op == Operator::Not) return Operand::Boolean(!detail::TruthOf(operand, unary.name));
        // The operand times the integer -1 or 1 by the multiplication operator: an integer stays
        // an integer (wrapping), a decimal stays a decimal.
        const std::int32_t sign = op == Operator::Subtract ? -1 : 1;
        switch (operand.Classify()) {
            case NumberClass::Integer:
                return Operand::Integer(detail::IntegerArithmetic(Operator::Multiply, operand.ToInteger(), sign));
            case NumberClass::Decimal: return Operand::Decimal(operand.ToDecimal() * sign);
            default: throw MacroError(FormatMessage(msg::kUnaryNeedsNumeric, {unary.name}));
        }
    }

    Operand EvalBinary(const M2::BinaryOp& binary, bool logged) {
        const Operator op = BinaryOperatorOf(binary);
        if (op == Operator::Unknown || op == Operator::Not) {
            throw MacroError(FormatMessage(msg::kUnknownOperator, {kBinaryOperatorCategory, binary.name}));
        }
        if (M2::IsAssignment(op)) return EvalAssignment(binary, op, logged);

        const Expression& rightNode = Node(binary.right);
        Operand left = Eval(Node(binary.left), false);
        if (op == Operator::And || op == Operator::Or) {
            const bool l = detail::TruthOf(left, binary.name);
            if (op == Operator::And && !l) return Operand::Boolean(false);
            if (op == Operator::Or && l) return Operand::Boolean(true);
            Operand right = Eval(rightNode, false);
            return Operand::Boolean(detail::TruthOf(right, binary.name));
        }
        // The left value is the one read before the right side runs: keep a copy when the right
        // side could change it.
        if (!IsPure(rightNode)) left.Materialize();
        Operand right = Eval(rightNode, false);
        if (op == Operator::Concat) return detail::ConcatenateOnto(std::move(left), binary.name, right);
        return detail::ApplyBinary(op, binary.name, left, right);
    }

    // Where an assignment path stands: a stored slot, or a value read from a property.
    struct Place {
        MacroValue* slot = nullptr;
        ValueRef holder;  // keeps an element slot alive
        MacroValue temp;  // the value of a property step, when slot is null
        MacroValue& value() { return slot ? *slot : temp; }
    };

    Operand EvalAssignment(const M2::BinaryOp& binary, Operator op, bool logged) {
        const Expression& target = Node(binary.left);
        const auto* var = std::get_if<M2::Var>(&target.primary);
        if (!var) throw MacroError(std::u16string(msg::kExpectedLValue));
        if (target.members.empty()) {
            // A plain variable: the common case, without the path machinery below.
            Operand rhs = Eval(Node(binary.right), false);
            MacroValue& slot = scope_.Variable(*var);
            if (rhs.IsRef() && &rhs.value() == &slot) rhs.Materialize();  // `$s &= $s`
            Store(slot, op, binary.name, std::move(rhs));
            if (logged && log_) LogLine(msg::kLogNewValue, slot.Describe());
            return Operand::Ref(slot);
        }

        // 1. The target's index keys, left to right.
        KeyList keys;
        for (const M2::Member& member : target.members) {
            if (const auto* index = std::get_if<M2::ExpressionPtr>(&member)) {
                Operand key = Eval(Node(*index), false);
                KeyText text;
                if (!detail::TextOf(key, text.buffer, text.scratch, text.text)) ThrowIndexNeedsKey(key, target);
                keys.Add(text.text);
            }
        }
        // 2. The right side, as a value of its own: resolving the target may change what a
        // reference would see (`$a[0] = $a` on an unset $a stores the empty value, not $a).
        Operand rhs = Eval(Node(binary.right), false);
        rhs.Materialize();

        // 3. Resolve the target.
        Place place;
        place.slot = &scope_.Variable(*var);
        std::size_t keyIndex = 0;
        const std::size_t count = target.members.size();
        for (std::size_t i = 0; i < count; ++i) {
            const M2::Member& member = target.members[i];
            MacroValue& current = place.value();
            if (const auto* prop = std::get_if<M2::Prop>(&member)) {
                if (current.kind() != Kind::Object || !current.object()) {
                    ThrowExpectedObject(current.DescribeShort(), target);
                }
                ObjectRef object = current.object();
                if (i + 1 == count) return AssignProperty(*object, prop->name, op, binary.name, std::move(rhs), logged);
                Place next;
                next.temp = object->GetProperty(prop->name, false);
                place = std::move(next);
                continue;
            }
            const std::u16string& key = keys[keyIndex++];
            if (current.kind() == Kind::Empty && place.slot) current.AsArray();
            if (current.kind() != Kind::Array || !current.array()) ThrowExpectedArray(current.DescribeShort(), target);
            ArrayRef array = current.array();  // place.temp may hold the only reference
            // A plain reference into the array, held together with the array: until the store
            // below only the next steps run, and they change other arrays (in an array holding
            // itself they leave this element behind).
            MacroValue& element = array->FindOrCreateValue(key);
            place.slot = &element;
            place.holder = ValueRef(std::move(array), &element);
            place.temp = MacroValue();
        }

        // 4. Combine and store.
        MacroValue& slot = *place.slot;
        Store(slot, op, binary.name, std::move(rhs));
        if (logged && log_) LogLine(msg::kLogNewValue, slot.Describe());
        return Operand::Ref(slot, std::move(place.holder));
    }

    void Store(MacroValue& slot, Operator op, std::u16string_view name, Operand&& rhs) {
        if (op == Operator::Assign) {
            std::move(rhs).StoreInto(slot);
            return;
        }
        const Operator base = CompoundBase(op);
        // Counters and sums: an integer variable and an integer operand under `+=`, `-=` or `*=`
        // are combined in place, without building operands (the result ApplyBinary would give).
        std::int32_t b;
        if (slot.kind() == Kind::Integer && rhs.IntegerOf(b)) {
            std::int32_t result;
            if (detail::WrappingArithmetic(base, slot.integer(), b, result)) {
                slot.SetInteger(result);
                return;
            }
        }
        // Concatenation onto a stored string appends in place: a loop building a text with
        // `$s &= ...` stays linear.
        if (slot.kind() == Kind::String &&
            (base == Operator::Concat ||
             (base == Operator::Add &&
              (rhs.Classify() == NumberClass::None || Operand::Ref(slot).Classify() == NumberClass::None)))) {
            KeyText text;
            if (!detail::TextOf(rhs, text.buffer, text.scratch, text.text)) {
                throw MacroError(FormatMessage(msg::kOperandNeedsString, {name, rhs.DescribeShort()}));
            }
            slot.mutableString().append(text.text);
            return;
        }
        detail::ApplyBinary(base, name, Operand::Ref(slot), rhs).StoreInto(slot);
    }

    Operand AssignProperty(MacroObject& object, const std::u16string& name, Operator op, std::u16string_view opText,
                           Operand&& rhs, bool logged) {
        MacroValue value;
        if (op == Operator::Assign) {
            value = std::move(rhs).Take();
        } else {
            Operand current(object.GetProperty(name, false));
            value = detail::ApplyBinary(CompoundBase(op), opText, current, rhs).Take();
        }
        object.SetProperty(name, value);
        if (logged && log_) LogLine(msg::kLogNewValue, value.Describe());
        return Operand(std::move(value));
    }

    // The slot of an argument that is a variable followed by index steps (see the file comment).
    // When a later argument can change arrays (`Array_PushBack($a[0], Array_PopBack($a))`) the
    // element is taken as a handle of its own (boxed), which stays put and stays alive whatever
    // happens to its array; otherwise nothing changes the array before the call uses the slot, and
    // the slot holds the array instead.
    ValueRef ResolveArgumentSlot(const Expression& node, bool laterEffects) {
        ValueRef slot = scope_.Slot(std::get<M2::Var>(node.primary));
        const std::size_t count = node.members.size();
        // The index expressions of the next steps run while a step's slot is held: a step is exposed
        // to effects when an impure index comes after it, that is when it comes before the last one.
        std::size_t lastImpureStep = 0;  // 0 also when there is none: no step comes before it
        for (std::size_t k = 0; k < count; ++k) {
            if (!IsPure(Node(std::get<M2::ExpressionPtr>(node.members[k])))) lastImpureStep = k;
        }
        for (std::size_t step = 0; step < count; ++step) {
            const bool effectsWhileHeld = laterEffects || step < lastImpureStep;
            Operand index = Eval(Node(std::get<M2::ExpressionPtr>(node.members[step])), false);
            KeyText key;
            if (!detail::TextOf(index, key.buffer, key.scratch, key.text)) ThrowIndexNeedsKey(index, node);
            MacroValue& current = *slot;
            if (current.kind() == Kind::Empty) current.AsArray();
            if (current.kind() != Kind::Array || !current.array()) ThrowExpectedArray(current.DescribeShort(), node);
            ArrayRef array = current.array();
            if (effectsWhileHeld) {
                slot = array->FindOrCreate(key.text);
            } else {
                MacroValue& element = array->FindOrCreateValue(key.text);
                slot = ValueRef(std::move(array), &element);
            }
        }
        return slot;
    }

    static bool LaterArgumentsPure(const M2::Call& call, std::size_t i) {
        for (std::size_t j = i + 1; j < call.args.size(); ++j) {
            if (!IsPure(Node(call.args[j]))) return false;
        }
        return true;
    }

    Operand EvalCall(const M2::Call& call) {
        const std::size_t n = call.args.size();
        ArgumentBuffer args(n);
        for (std::size_t i = 0; i < n; ++i) {
            const Expression& arg = Node(call.args[i]);
            if (IsSlotArgument(arg)) {
                // A plain variable lives as long as the scope, which outlives the call: its slot is
                // passed without shared ownership (an aliasing reference with no owner), sparing two
                // reference-count updates per argument.
                ValueRef slot = arg.members.empty()
                                    ? ValueRef(ValueRef(), &scope_.Variable(*std::get_if<M2::Var>(&arg.primary)))
                                    : ResolveArgumentSlot(arg, !LaterArgumentsPure(call, i));
                args.Add(*slot, std::move(slot));
            } else {
                args.Add(Eval(arg, false).Take(), nullptr);
            }
        }
        if (!calls_) throw MacroError(FormatMessage(msg::kUnknownFunction, {call.name}));
        return Operand(calls_->Call(call, args.span()));
    }

    // The arguments of one call: up to four in place, more on the heap; only the arguments added
    // are constructed.
    class ArgumentBuffer {
    public:
        explicit ArgumentBuffer(std::size_t n) {
            if (n > kInline) heap_.reserve(n);
        }
        ~ArgumentBuffer() {
            Argument* data = std::launder(reinterpret_cast<Argument*>(inline_));
            for (std::size_t i = 0; i < inlineCount_; ++i) data[i].~Argument();
        }
        ArgumentBuffer(const ArgumentBuffer&) = delete;
        ArgumentBuffer& operator=(const ArgumentBuffer&) = delete;

        // The value is copied or moved straight into its argument (no intermediate value).
        template <class Value>
        void Add(Value&& value, ValueRef&& slot) {
            if (heap_.capacity() != 0) {
                heap_.push_back(Argument{std::forward<Value>(value), std::move(slot)});
                return;
            }
            new (inline_ + inlineCount_ * sizeof(Argument)) Argument{std::forward<Value>(value), std::move(slot)};
            ++inlineCount_;
        }
        std::span<Argument> span() {
            if (heap_.capacity() != 0) return std::span<Argument>(heap_);
            return std::span<Argument>(std::launder(reinterpret_cast<Argument*>(inline_)), inlineCount_);
        }

    private:
        static constexpr std::size_t kInline = 4;
        alignas(Argument) unsigned char inline_[kInline * sizeof(Argument)];
        std::size_t inlineCount_ = 0;
        std::vector<Argument> heap_;
    };

    MacroScope& scope_;
    CallHandler* calls_;
    LogSink* log_;
};

}  // namespace

std::size_t MacroScope::IndexOf(std::u16string_view name) {
    CacheEntry& entry = cache_[CacheSlot(name.data())];
    char16_t buffer[24];
    if (entry.data == name.data() && entry.index < variables_.size() &&
        SameText(variables_.KeyAt(entry.index, buffer), name)) {
        return entry.index;
    }
    const std::size_t count = variables_.size();
    const std::size_t index = variables_.FindOrCreateIndex(name);
    if (variables_.size() != count) variables_.Handle(index);
    entry.data = name.data();
    entry.index = index;
    return index;
}

std::uint64_t MacroScope::NextSerial() noexcept {
    static std::atomic<std::uint64_t> next{1};
    const std::uint64_t serial = next.fetch_add(1, std::memory_order_relaxed);
    return serial <= kMemoLastSerial ? serial : std::numeric_limits<std::uint64_t>::max();
}

Evaluator::Evaluator(MacroScope& scope, CallHandler* calls, LogSink* log) : scope_(&scope), calls_(calls), log_(log) {}

MacroValue Evaluator::Evaluate(const M2::Expression& expression, bool logged) {
    Walker walker(*scope_, calls_, log_);
    return walker.Eval(expression, logged).Take();
}

void Evaluator::Execute(const M2::Expression& expression, bool logged) {
    Walker walker(*scope_, calls_, log_);
    walker.Eval(expression, logged);
}

bool Evaluator::EvaluateCondition(const M2::Expression& expression, bool logged) {
    Walker walker(*scope_, calls_, log_);
    Operand result = walker.Eval(expression, logged);
    const Kind kind = result.kind();
    if (kind == Kind::Array || kind == Kind::Object || kind == Kind::Time) {
        throw MacroError(FormatMessage(msg::kConditionNeedsBoolean, {result.DescribeShort(), PrintText(expression)}));
    }
    return detail::TruthOf(result, u"?");
}

}  // namespace qm
