#include "runtime/interpreter.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include "core/error.h"
#include "core/format.h"
#include "core/parser.h"
#include "runtime/builtin.h"
#include "runtime/macro_log.h"
#include "runtime/messages.h"
#include "runtime/run_control.h"
#include "runtime/run_ui.h"
#include "runtime/stack_limit.h"

namespace qm {
namespace {

// Stack kept free below the deepest block or call: room for one expression evaluated to its full
// nesting depth, the built-in it calls and the log. Sanitizer frames are several times larger.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::uintptr_t kStackReserve = 1024 * 1024;
#else
constexpr std::uintptr_t kStackReserve = 256 * 1024;
#endif

// A statement whose expression slot is unset behaves as if it held the empty expression.
const M2::Expression& Expr(const M2::ExpressionPtr& expression) {
    static const M2::Expression empty;
    return expression ? *expression : empty;
}

// Loop variables and parameters are names without "$"; a stored "$" is dropped.
std::u16string_view VariableName(const std::u16string& name) {
    std::u16string_view view = name;
    if (!view.empty() && view.front() == u'$') view.remove_prefix(1);
    return view;
}

// The text of an expression in the log and in messages; a missing count or value prints as nothing.
std::u16string ExpressionText(const M2::Expression& expression) {
    return expression.IsEmpty() ? std::u16string() : PrintText(expression);
}

std::u16string Concat(std::initializer_list<std::u16string_view> parts) {
    std::u16string text;
    for (std::u16string_view part : parts) text += part;
    return text;
}

// A macro error that carries no text, only the macro-error code.
[[noreturn]] void FailWithoutText() { throw MacroError(std::u16string()); }

}  // namespace

Interpreter::Interpreter(MacroExecutionContext& context, RuntimeServices& services, const M2::Macro& macro)
    : context_(context),
      macro_(macro),
      calls_(services),
      log_(context.log && context.log->IsOpen() ? context.log : nullptr),
      macroEvaluator_(context.variables, &calls_, log_),
      evaluator_(&macroEvaluator_) {
    calls_.SetFallback([this](const M2::Call& call, std::span<Argument> args) { return CallFunction(call, args); });
    // The first of several functions with one name is the one called.
    for (const auto& function : macro.functions) {
        if (function) functions_.emplace(function->name, function.get());
    }
    if (std::uintptr_t low = StackLowLimit(); low != 0) stackLimit_ = low + kStackReserve;
    untilClockRead_ = 1;
}

void Interpreter::executeMacro() {
    switch (executeStatements(macro_.statements)) {
        case Flow::Break: throw Macro::BreakException(pendingLevels_, pendingExpression_, &context_);
        case Flow::Continue: throw Macro::ContinueException(pendingLevels_, pendingExpression_, &context_);
        case Flow::Next:
        case Flow::Return: return;
    }
}

std::u16string Interpreter::StrayBreakMessage(const M2::Expression* countExpression) {
    return FormatMessage(msg::kBreakWithoutLoop, {countExpression ? ExpressionText(*countExpression) : std::u16string()});
}

std::u16string Interpreter::StrayContinueMessage(const M2::Expression* countExpression) {
    return FormatMessage(msg::kContinueWithoutLoop,
                         {countExpression ? ExpressionText(*countExpression) : std::u16string()});
}

void Interpreter::CheckStack() {
    if (stackLimit_ != 0 && QM_CURRENT_FRAME() < stackLimit_) [[unlikely]] {
        throw MacroError(std::u16string(msg::kBlocksNestedTooDeeply));
    }
}

Interpreter::Flow Interpreter::executeStatements(const M2::Statements& list) {
    CheckStack();
    for (const auto& statement : list.items()) {
        BetweenStatements();
        if (!statement) [[unlikely]] FailWithoutText();
        const Flow flow = executeStatement(*statement);
        if (flow != Flow::Next) [[unlikely]] return flow;
    }
    BetweenStatements();
    return Flow::Next;
}

inline void Interpreter::BetweenStatements() {
    if (context_.options->progressInUse && context_.progress) {
        if (--untilClockRead_ == 0) [[unlikely]] Repaint();
    }
    if (context_.cancelFlag && context_.cancelFlag->load(std::memory_order_relaxed)) [[unlikely]] {
        throw RunCancelled{};
    }
}

void Interpreter::Repaint() {
    untilClockRead_ = kRepaintStride;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastRepaint_ > kRepaintInterval) {
        lastRepaint_ = now;
        context_.progress->Repaint(context_.statementsRun);
    }
}

// The kinds are tested in a fixed order and the first one present runs. An If sets the pairing
// flags after its body has run; an Else consumes them; every other statement clears them first.
Interpreter::Flow Interpreter::executeStatement(const M2::Statement& statement) {
    ++context_.statementsRun;
    if (statement.ifStatement) {
        bool taken = false;
        const Flow flow = executeIf(*statement.ifStatement, taken);
        // A Break, Continue or Return leaving the body leaves the If unfinished: the flags stay
        // as the statement that left set them.
        if (flow == Flow::Next) {
            context_.lastIfTaken = taken;
            context_.elsePending = !taken;
        }
        return flow;
    }
    if (statement.elseStatement) return executeElse(*statement.elseStatement);

    context_.lastIfTaken = false;
    context_.elsePending = false;
    if (statement.forEach) return executeForEach(*statement.forEach);
    if (statement.whileStatement) return executeWhile(*statement.whileStatement);
    if (statement.breakLevels) return executeBreakOrContinue(*statement.breakLevels, Flow::Break);
    if (statement.continueLevels) return executeBreakOrContinue(*statement.continueLevels, Flow::Continue);
    if (statement.expression) {
        executeExpression(*statement.expression);
        return Flow::Next;
    }
    if (statement.comment) {
        executeComment(*statement.comment);
        return Flow::Next;
    }
    if (statement.returnValue) return executeReturn(*statement.returnValue);
    FailWithoutText();
}

Interpreter::Flow Interpreter::executeIf(const M2::If& statement, bool& taken) {
    const M2::Expression& condition = Expr(statement.condition);
    if (log_) log_->Entry(Concat({u"If ", PrintText(condition)}));
    taken = evaluator_->EvaluateCondition(condition, true);
    if (log_) log_->Line(taken ? msg::kLogConditionTrue : msg::kLogConditionFalse);
    return taken ? executeStatements(statement.statements) : Flow::Next;
}

Interpreter::Flow Interpreter::executeElse(const M2::Else& statement) {
    if (context_.elsePending) {
        const Flow flow = executeStatements(statement.statements);
        if (flow == Flow::Next) {
            context_.lastIfTaken = false;
            context_.elsePending = false;
        }
        return flow;
    }
    if (context_.lastIfTaken) {
        context_.lastIfTaken = false;
        context_.elsePending = false;
        return Flow::Next;
    }
    FailMacro(msg::kElseWithoutIf);
}

Interpreter::Flow Interpreter::executeForEach(const M2::ForEach& statement) {
    const M2::Expression& collection = Expr(statement.array);
    const std::u16string_view name = VariableName(statement.var);
    if (log_) log_->Entry(Concat({u"ForEach $", name, u" in ", PrintText(collection)}));

    // The unset value is an empty array, and so is a missing collection expression.
    if (collection.IsEmpty()) return Flow::Next;
    MacroValue value = evaluator_->Evaluate(collection, true);
    if (value.IsEmpty()) return Flow::Next;
    if (value.kind() != Kind::Array || !value.array()) FailWithoutText();

    // The loop visits the values the array held when it started, however the body changes it:
    // the snapshot shares the array's values until the array changes (then the array copies them).
    const std::shared_ptr<const MacroArray::Values> snapshot = value.array()->Snapshot();
    value = MacroValue();

    // The loop variable's slot, found once: variables stay where they are while their scope lives,
    // and the body runs in this same scope (a function call it makes returns to it). An empty
    // collection leaves the variable as it was (not even created).
    if (!snapshot) return Flow::Next;
    MacroValue& variable = evaluator_->scope().Variable(name);
    for (const MacroValue& element : *snapshot) {
        variable = element;
        switch (runLoopBody(statement.statements)) {
            case LoopStep::Again: break;
            case LoopStep::End: return Flow::Next;
            case LoopStep::Leave: return leaveFlow_;
        }
    }
    return Flow::Next;
}

Interpreter::Flow Interpreter::executeWhile(const M2::While& statement) {
    const M2::Expression& condition = Expr(statement.condition);
    std::u16string text;
    if (log_) {
        text = Concat({u"While ", PrintText(condition)});
        log_->Entry(text);
    }
    while (evaluator_->EvaluateCondition(condition, true)) {
        switch (runLoopBody(statement.statements)) {
            case LoopStep::Again:
                if (log_) log_->Line(text);
                break;
            case LoopStep::End:
                if (log_) log_->Line(Concat({msg::kLogBreakingOutOf, text}));
                return Flow::Next;
            case LoopStep::Leave: return leaveFlow_;
        }
    }
    return Flow::Next;
}

// A Break or Continue that reaches its loop with one level left is consumed there; with more
// levels left the loop ends and passes it on, one level less.
Interpreter::LoopStep Interpreter::runLoopBody(const M2::Statements& body) {
    switch (executeStatements(body)) {
        case Flow::Next: return LoopStep::Again;
        case Flow::Break:
            if (pendingLevels_ <= 1) return LoopStep::End;
            --pendingLevels_;
            leaveFlow_ = Flow::Break;
            return LoopStep::Leave;
        case Flow::Continue:
            if (pendingLevels_ <= 1) return LoopStep::Again;
            --pendingLevels_;
            leaveFlow_ = Flow::Continue;
            return LoopStep::Leave;
        case Flow::Return: leaveFlow_ = Flow::Return; return LoopStep::Leave;
    }
    return LoopStep::Again;
}

Interpreter::Flow Interpreter::executeBreakOrContinue(const M2::Expression& count, Flow kind) {
    const std::u16string_view keyword = kind == Flow::Break ? u"Break" : u"Continue";
    if (log_) log_->Entry(Concat({keyword, u" ", ExpressionText(count)}));
    std::uint32_t levels = 1;
    if (!count.IsEmpty()) {
        const MacroValue value = evaluator_->Evaluate(count, true);
        try {
            levels = static_cast<std::uint32_t>(value.AsInteger());
        } catch (const std::invalid_argument&) {
            FailMacro(msg::kCountNotNumeric, {keyword, PrintText(count)});
        }
        if (levels == 0) FailMacro(msg::kUnexpectedCount, {keyword, PrintText(count)});
    }
    pendingLevels_ = levels;
    pendingExpression_ = &count;
    return kind;
}

Interpreter::Flow Interpreter::executeReturn(const M2::Expression& value) {
    if (log_) log_->Entry(Concat({u"Return ", ExpressionText(value)}));
    returnValue_ = value.IsEmpty() ? MacroValue() : evaluator_->Evaluate(value, true);
    return Flow::Return;
}

void Interpreter::executeExpression(const M2::Expression& expression) {
    if (log_) log_->Entry(PrintText(expression));
    evaluator_->Execute(expression, true);
}

void Interpreter::executeComment(const M2::Comment& comment) {
    if (log_) log_->Entry(Concat({u"// ", comment.text}));
}

std::optional<MacroValue> Interpreter::CallFunction(const M2::Call& call, std::span<Argument> args) {
    const auto found = functions_.find(call.name);
    if (found == functions_.end()) return std::nullopt;
    const M2::Function& function = *found->second;
    if (args.size() != function.params.size()) {
        FailMacro(msg::kWrongArgumentCount, {function.name, IntegerText(static_cast<std::int64_t>(function.params.size())),
                                             IntegerText(static_cast<std::int64_t>(args.size()))});
    }
    if (callDepth_ >= kMaxCallDepth) FailMacro(msg::kCallsTooDeep, {function.name, IntegerText(kMaxCallDepth)});
    CheckStack();

    // The function's own variables: its parameters, bound by position.
    MacroScope scope;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const auto& param = function.params[i];
        scope.Variable(VariableName(param ? param->name : std::u16string())) = std::move(args[i].value);
    }
    Evaluator evaluator(scope, &calls_, log_);

    // The caller's evaluator and If/Else flags come back however the function ends.
    struct Frame {
        Interpreter& self;
        Evaluator* evaluator;
        bool lastIfTaken;
        bool elsePending;
        ~Frame() {
            self.evaluator_ = evaluator;
            self.context_.lastIfTaken = lastIfTaken;
            self.context_.elsePending = elsePending;
            --self.callDepth_;
        }
    } frame{*this, evaluator_, context_.lastIfTaken, context_.elsePending};
    ++callDepth_;
    evaluator_ = &evaluator;
    context_.lastIfTaken = false;
    context_.elsePending = false;

    switch (executeStatements(function.statements)) {
        case Flow::Return: return std::exchange(returnValue_, MacroValue());
        case Flow::Break: throw MacroError(StrayBreakMessage(pendingExpression_));
        case Flow::Continue: throw MacroError(StrayContinueMessage(pendingExpression_));
        case Flow::Next: break;
    }
    return MacroValue();
}

}  // namespace qm
