// The statement interpreter: runs the statement tree of one macro against its variables, with
// the If/Else pairing, loops, Break/Continue across loop levels, the macro's own functions, the
// cancel check and repaint between statements, and one macro log entry per statement.
//
// Choices made here:
// - Break and Continue travel as a status, not as exceptions. Every statement list returns how it
//   ended (Flow): normally, or by a Break, Continue or Return whose remaining level count the
//   interpreter keeps. A loop body that ends by Break or Continue consumes one level; with levels
//   left the loop passes the status on to the enclosing loop. This is exactly the level counting
//   of the control-flow exceptions, without the cost of throwing one per iteration. Only a Break
//   or Continue that leaves the macro's own statement list becomes an exception,
//   Macro::ExpressionException<Macro::BreakTag> / <Macro::ContinueTag>, which the run driver
//   turns into the "... without For or While ..." error.
// - A Break or Continue without a count expression (the empty expression) means 1.
// - User-defined functions: a call whose name is no built-in and names a Function of the macro
//   runs it. The arguments are bound to the parameters by position in a fresh variable scope
//   (arrays and objects stay shared: a value refers to them), with fresh If/Else flags (the
//   caller's are restored afterwards). `Return` ends the function with its value, or the empty
//   value without one; a function that ends without Return returns empty. A wrong argument count
//   fails with the built-ins' message. Break and Continue never cross a function's boundary: one
//   reaching the function's top is the "... without For or While ..." error. At most
//   kMaxCallDepth calls may be unfinished; deeper recursion fails with a macro error, as does any
//   nesting of blocks and calls that would leave too little stack for evaluation.
// - `Return` outside any function ends the macro as if its last statement had run: the run
//   finishes normally and its pages are saved.
// - A ForEach's loop variable and a function's parameters are names without "$" (a leading "$"
//   is tolerated and dropped); the log shows them with it: "ForEach $item in ...".
// - A macro error with no text (a ForEach over a value that is no array, a statement with no
//   content) keeps its empty message; the run driver reports it as msg::kErrorWithoutText.
// - The progress window's clock is read only every kRepaintStride statements, so a tight loop
//   pays for no clock read per statement; the 50 ms rule is applied on those reads.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/evaluator.h"
#include "macros/m2_schema.h"
#include "runtime/dispatch.h"
#include "runtime/execution_context.h"

namespace qm {

namespace Macro {

// Tags that tell the two control-flow exceptions apart (the schema's Expression_Break and
// Expression_Continue are the same type).
struct BreakTag {};
struct ContinueTag {};

// A Break or Continue that no loop consumed: the remaining level count, the statement's count
// expression (for the message) and the run's context.
template <class Tag>
class ExpressionException {
public:
    ExpressionException(std::uint32_t levels, const M2::Expression* expression, MacroExecutionContext* context)
        : levels_(levels), expression_(expression), context_(context) {}

    std::uint32_t levels() const noexcept { return levels_; }
    const M2::Expression* expression() const noexcept { return expression_; }
    MacroExecutionContext* context() const noexcept { return context_; }

private:
    std::uint32_t levels_;
    const M2::Expression* expression_;
    MacroExecutionContext* context_;
};

using BreakException = ExpressionException<BreakTag>;
using ContinueException = ExpressionException<ContinueTag>;

}  // namespace Macro

class Interpreter {
public:
    // Unfinished user-defined function calls allowed at once.
    static constexpr int kMaxCallDepth = 200;
    // Statements between two reads of the clock for the progress window.
    static constexpr std::uint32_t kRepaintStride = 64;
    static constexpr std::chrono::milliseconds kRepaintInterval{50};

    // The macro must outlive the interpreter. The services reach the built-ins; their call handler
    // is the interpreter's own, which sends unknown names to the macro's functions.
    Interpreter(MacroExecutionContext& context, RuntimeServices& services, const M2::Macro& macro);
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    // Runs the macro's statement list. Raises MacroError, RunCancelled, Macro::ExitException, and
    // Macro::BreakException / ContinueException for a Break or Continue outside every loop.
    void executeMacro();

    // The message of a Break or Continue that no loop consumed.
    static std::u16string StrayBreakMessage(const M2::Expression* countExpression);
    static std::u16string StrayContinueMessage(const M2::Expression* countExpression);

private:
    enum class Flow : std::uint8_t { Next, Break, Continue, Return };
    enum class LoopStep : std::uint8_t { Again, End, Leave };

    Flow executeStatements(const M2::Statements& list);
    Flow executeStatement(const M2::Statement& statement);
    Flow executeIf(const M2::If& statement, bool& taken);
    Flow executeElse(const M2::Else& statement);
    Flow executeForEach(const M2::ForEach& statement);
    Flow executeWhile(const M2::While& statement);
    Flow executeBreakOrContinue(const M2::Expression& count, Flow kind);
    Flow executeReturn(const M2::Expression& value);
    void executeExpression(const M2::Expression& expression);
    void executeComment(const M2::Comment& comment);
    LoopStep runLoopBody(const M2::Statements& body);

    void BetweenStatements();
    void Repaint();
    void CheckStack();
    std::optional<MacroValue> CallFunction(const M2::Call& call, std::span<Argument> args);

    MacroExecutionContext& context_;
    const M2::Macro& macro_;
    BuiltinCallHandler calls_;
    MacroLog* log_;
    Evaluator macroEvaluator_;
    Evaluator* evaluator_;  // the evaluator of the innermost running function, or the macro's

    std::unordered_map<std::u16string_view, const M2::Function*> functions_;
    int callDepth_ = 0;

    // The pending Break/Continue/Return: remaining levels, count expression, returned value.
    std::uint32_t pendingLevels_ = 0;
    const M2::Expression* pendingExpression_ = nullptr;
    Flow leaveFlow_ = Flow::Next;  // what a loop passes on when its body ends with LoopStep::Leave
    MacroValue returnValue_;

    std::uintptr_t stackLimit_ = 0;  // lowest frame address allowed; 0: unchecked
    std::uint32_t untilClockRead_ = 0;
    std::chrono::steady_clock::time_point lastRepaint_{};
};

}  // namespace qm
