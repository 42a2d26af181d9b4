#include "runtime/static_check.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <variant>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/format.h"
#include "core/messages.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/value.h"
#include "macros/messages.h"
#include "runtime/catalogue.h"
#include "runtime/messages.h"

namespace qm {
namespace {

using M2::StatementKind;

std::u16string Number(std::int64_t n) { return Ascii(std::to_string(n)); }

// The level count of a Break or Continue when it is known before the run: the empty expression
// is 1, a literal converts as the run converts it (a negative count wraps round to a huge one, as
// in the run). Nothing for a computed count.
std::optional<std::uint32_t> KnownCount(const M2::Expression& count) {
    if (count.IsEmpty()) return 1;
    if (!count.IsLiteral() || !count.members.empty()) return std::nullopt;
    try {
        MacroScope scope;
        return static_cast<std::uint32_t>(Evaluator(scope).Evaluate(count).AsInteger());
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// True when an Else right after `previous` can pair with an If: `previous` is an If, or a loop
// whose body ends in one (looking through loops nested at the ends of bodies).
bool CanPairWithElse(const M2::Statement* previous) {
    while (previous) {
        const M2::Statements* body = nullptr;
        switch (previous->kind()) {
            case StatementKind::If: return true;
            case StatementKind::ForEach: body = &previous->forEach->statements; break;
            case StatementKind::While: body = &previous->whileStatement->statements; break;
            default: return false;
        }
        previous = body->empty() ? nullptr : body->items().back().get();
    }
    return false;
}

class Checker {
public:
    Checker(const M2::Macro& macro, const M2::TextFormLines* lines) : macro_(macro), lines_(lines) {
        // The first Function of a name is the one a call reaches.
        for (const auto& function : macro.functions) functions_.emplace(function->name, function.get());
    }

    std::vector<Finding> Run(std::u16string_view root) {
        Block(macro_.statements, root, 1, 0);
        int index = 0;
        for (const auto& function : macro_.functions) {
            Block(function->statements, std::u16string(root) + u"/Function[" + Number(++index) + u"]", 2, 0);
        }
        return std::move(findings_);
    }

private:
    void Add(const M2::Statement& at, std::u16string_view path, std::u16string message) {
        findings_.push_back(Finding{std::u16string(path), lines_ ? lines_->LineOf(at) : 0, std::move(message)});
    }

    // `level`: the nesting level of the statements (top level 1, as in the text form); `loops`:
    // the loops around them within the macro body or function.
    void Block(const M2::Statements& list, std::u16string_view path, int level, int loops) {
        if (list.empty()) return;
        if (level > M2::kMaxStatementDepth) {
            Add(*list[0], path,
                FormatMessage(macros::msg::kTextTooDeep, {Number(M2::kMaxStatementDepth)}));
            return;
        }
        int counts[10] = {};
        const M2::Statement* previous = nullptr;
        for (const auto& item : list) {
            const M2::Statement& s = *item;
            const StatementKind kind = s.kind();
            const std::u16string here = std::u16string(path) + u"/" + std::u16string(M2::StatementName(kind)) +
                                        u"[" + Number(++counts[static_cast<int>(kind)]) + u"]";
            switch (kind) {
                case StatementKind::ForEach:
                    Calls(s.forEach->array.get(), s, here);
                    Block(s.forEach->statements, here, level + 1, loops + 1);
                    break;
                case StatementKind::If:
                    Calls(s.ifStatement->condition.get(), s, here);
                    Block(s.ifStatement->statements, here, level + 1, loops);
                    break;
                case StatementKind::Else:
                    if (!CanPairWithElse(previous)) Add(s, here, std::u16string(msg::kElseWithoutIf));
                    Block(s.elseStatement->statements, here, level + 1, loops);
                    break;
                case StatementKind::While:
                    Calls(s.whileStatement->condition.get(), s, here);
                    Block(s.whileStatement->statements, here, level + 1, loops + 1);
                    break;
                case StatementKind::Expression: Calls(s.expression.get(), s, here); break;
                case StatementKind::Break:
                    Count(*s.breakLevels, u"Break", msg::kBreakWithoutLoop, loops, s, here);
                    Calls(s.breakLevels.get(), s, here);
                    break;
                case StatementKind::Continue:
                    Count(*s.continueLevels, u"Continue", msg::kContinueWithoutLoop, loops, s, here);
                    Calls(s.continueLevels.get(), s, here);
                    break;
                case StatementKind::Return: Calls(s.returnValue.get(), s, here); break;
                case StatementKind::Comment:  // commented out: never run
                case StatementKind::None: break;
            }
            previous = &s;
        }
    }

    void Count(const M2::Expression& count, std::u16string_view keyword, std::u16string_view withoutLoop, int loops,
               const M2::Statement& s, std::u16string_view path) {
        // The run's messages show the count as printed (an absent one as "").
        const std::optional<std::uint32_t> known = KnownCount(count);
        if (known && *known == 0) {
            Add(s, path, FormatMessage(msg::kUnexpectedCount, {keyword, PrintText(count)}));
        } else if (loops == 0 || (known && *known > static_cast<std::uint32_t>(loops))) {
            Add(s, path, FormatMessage(withoutLoop, {PrintText(count)}));
        }
    }

    // Every call in the expression, in the order they are written.
    void Calls(const M2::Expression* e, const M2::Statement& s, std::u16string_view path) {
        if (!e) return;
        std::visit(
            [&](const auto& primary) {
                using P = std::decay_t<decltype(primary)>;
                if constexpr (std::is_same_v<P, M2::Call>) {
                    Call(primary, s, path);
                    for (const auto& arg : primary.args) Calls(arg.get(), s, path);
                } else if constexpr (std::is_same_v<P, M2::UnaryOp>) {
                    Calls(primary.operand.get(), s, path);
                } else if constexpr (std::is_same_v<P, M2::BinaryOp>) {
                    Calls(primary.left.get(), s, path);
                    Calls(primary.right.get(), s, path);
                } else if constexpr (std::is_same_v<P, M2::TernaryOp>) {
                    Calls(primary.condition.get(), s, path);
                    Calls(primary.whenTrue.get(), s, path);
                    Calls(primary.whenFalse.get(), s, path);
                }
            },
            e->primary);
        for (const M2::Member& member : e->members) {
            if (const auto* index = std::get_if<M2::ExpressionPtr>(&member)) Calls(index->get(), s, path);
        }
    }

    void Call(const M2::Call& call, const M2::Statement& s, std::u16string_view path) {
        const std::int64_t provided = static_cast<std::int64_t>(call.args.size());
        std::int64_t expected = 0;
        if (const FunctionInfo* builtin = FindBuiltin(call.name)) {
            if (builtin->variadic()) return;
            expected = static_cast<std::int64_t>(builtin->parameters.size());
        } else if (auto found = functions_.find(call.name); found != functions_.end()) {
            expected = static_cast<std::int64_t>(found->second->params.size());
        } else {
            Add(s, path, FormatMessage(msg::kUnknownFunction, {call.name}));
            return;
        }
        if (expected != provided) {
            Add(s, path, FormatMessage(msg::kWrongArgumentCount, {call.name, Number(expected), Number(provided)}));
        }
    }

    const M2::Macro& macro_;
    const M2::TextFormLines* lines_;
    std::unordered_map<std::u16string_view, const M2::Function*> functions_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> CheckMacro(const M2::Macro& macro, const M2::TextFormLines* lines, std::u16string_view root) {
    return Checker(macro, lines).Run(root);
}

}  // namespace qm
