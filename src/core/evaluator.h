// Evaluation of expression trees over the variables of a running macro: assignments through
// slots, left-to-right operators, short-circuit logic, member and index access. Calls go to a
// CallHandler (the built-in catalogue and the macro's own functions); property reads and writes go
// to the object itself.
#pragma once

#include <span>
#include <string_view>

#include "core/expression.h"
#include "core/value.h"

namespace qm {

// The variables visible to one evaluation: an array keyed by variable name. Looking a name up
// creates it, empty, when it does not exist.
class MacroScope {
public:
    ValueRef Slot(std::u16string_view name) { return variables_.FindOrCreate(name); }
    const MacroArray& variables() const noexcept { return variables_; }

private:
    MacroArray variables_;
};

struct Argument {
    MacroValue value;
    // The stored slot when the argument expression is assignable (a variable, possibly followed by
    // index steps); null otherwise. Built-ins that take an argument by reference write through it.
    ValueRef slot;
};

class CallHandler {
public:
    virtual ~CallHandler() = default;
    // Resolves the name, checks the argument count and runs the function.
    virtual MacroValue Call(const M2::Call& call, std::span<Argument> args) = 0;
};

// Where evaluation log lines go while the macro log is on.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void Write(std::u16string_view text) = 0;
};

class Evaluator {
public:
    // Without a call handler every call fails with the unknown-function message; without a log
    // sink nothing is logged.
    explicit Evaluator(MacroScope& scope, CallHandler* calls = nullptr, LogSink* log = nullptr);

    // Throws MacroError for every user-facing failure.
    MacroValue Evaluate(const M2::Expression& expression, bool logged = false);

    MacroScope& scope() noexcept { return *scope_; }
    CallHandler* calls() const noexcept { return calls_; }
    LogSink* log() const noexcept { return log_; }

private:
    MacroScope* scope_;
    CallHandler* calls_;
    LogSink* log_;
};

}  // namespace qm
