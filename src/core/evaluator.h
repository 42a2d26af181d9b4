// Evaluation of expression trees over the variables of a running macro: assignments through
// slots, left-to-right operators, short-circuit logic, member and index access. Calls go to a
// CallHandler (the built-in catalogue and the macro's own functions); property reads and writes go
// to the object itself.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/expression.h"
#include "core/value.h"

namespace qm {

// The variables visible to one evaluation: an array keyed by variable name. Looking a name up
// creates it, empty, when it does not exist.
class MacroScope {
public:
    MacroScope() : serial_(NextSerial()) {}
    // A copy or a moved-to scope is another scope: it takes a serial of its own (see Variable), and
    // so does a scope whose variables were moved away or replaced.
    MacroScope(const MacroScope& other) : variables_(other.variables_), serial_(NextSerial()) {}
    MacroScope(MacroScope&& other) noexcept : variables_(std::move(other.variables_)), serial_(NextSerial()) {
        other.Renew();
    }
    MacroScope& operator=(const MacroScope& other) {
        if (this != &other) {
            variables_ = other.variables_;
            Renew();
        }
        return *this;
    }
    MacroScope& operator=(MacroScope&& other) noexcept {
        if (this != &other) {
            variables_ = std::move(other.variables_);
            Renew();
            other.Renew();
        }
        return *this;
    }

    // Every variable is boxed in the scope's array as it is created (see MacroArray): its value
    // stays put while other variables are created.
    ValueRef Slot(std::u16string_view name) { return variables_.Handle(IndexOf(name)); }
    // The same slot without reference-count traffic. Variables are never removed from a scope, so
    // the reference stays valid for the scope's lifetime.
    MacroValue& Variable(std::u16string_view name) { return variables_.BoxedAt(IndexOf(name)); }
    // The slot of a variable node. The node remembers the slot's position together with this
    // scope's serial, so the next read of the same node in the same scope costs no lookup at all:
    // positions never change while a scope lives, and no two scopes share a serial. A node read in
    // another scope (a function's, a later run's) finds another serial and looks the name up again.
    // A node's name does not change while it is being evaluated (the tree is const there), and a
    // changed tree is run in a new scope, so a remembered position always belongs to the name.
    MacroValue& Variable(const M2::Var& var) { return variables_.BoxedAt(IndexOf(var)); }
    ValueRef Slot(const M2::Var& var) { return variables_.Handle(IndexOf(var)); }
    const MacroArray& variables() const noexcept { return variables_; }

private:
    std::size_t IndexOf(const M2::Var& var) {
        const std::uint64_t memo = var.slot.Load();
        if ((memo >> kMemoIndexBits) == serial_) return static_cast<std::size_t>(memo & kMemoIndexMask);
        const std::size_t index = IndexOf(var.name);
        if (index <= kMemoIndexMask && serial_ <= kMemoLastSerial) {
            var.slot.Store((serial_ << kMemoIndexBits) | static_cast<std::uint64_t>(index));
        }
        return index;
    }

    // Variable lookup by name. A small direct-mapped cache keyed by the address of the name's
    // characters (the name in a tree node, which stays put while the tree lives) remembers the
    // element index; a hit is confirmed by comparing the name itself, so a stale entry (a freed tree
    // whose memory holds another name) only costs a miss. Out of line: the node memo above is the
    // hot path, and it stays small enough to inline.
    std::size_t IndexOf(std::u16string_view name);
    static std::size_t CacheSlot(const char16_t* p) {
        auto v = reinterpret_cast<std::uintptr_t>(p);
        return ((v >> 3) ^ (v >> 9)) & (kCacheSize - 1);
    }
    struct CacheEntry {
        const char16_t* data = nullptr;
        std::size_t index = 0;
    };
    static constexpr std::size_t kCacheSize = 64;

    // A node memo holds the serial in its upper 40 bits and the position in the lower 24. Serials
    // start at 1 (the empty memo 0 matches no scope); past the last one that fits, scopes are left
    // with a serial no memo can hold and simply look names up.
    static constexpr unsigned kMemoIndexBits = 24;
    static constexpr std::uint64_t kMemoIndexMask = (std::uint64_t{1} << kMemoIndexBits) - 1;
    static constexpr std::uint64_t kMemoLastSerial = (std::uint64_t{1} << (64 - kMemoIndexBits)) - 1;
    static std::uint64_t NextSerial() noexcept;
    void Renew() noexcept {
        serial_ = NextSerial();
        cache_ = {};
    }

    MacroArray variables_;
    std::uint64_t serial_;
    std::array<CacheEntry, kCacheSize> cache_{};
};

struct Argument {
    MacroValue value;
    // The stored slot when the argument expression is assignable (a variable, possibly followed by
    // index steps); null otherwise. Built-ins that take an argument by reference write through it.
    // Valid for the call only: a variable's slot is passed without ownership.
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
    // Evaluate for an expression statement: the result is dropped without being copied out (an
    // assignment's result is the stored value, which may be a long string).
    void Execute(const M2::Expression& expression, bool logged = false);
    // Evaluate, then the truth test of a condition (AsBoolean: only "true", "True" and "1" among
    // strings). A value that has no truth (array, object, time) raises kConditionNeedsBoolean
    // instead of the internal invalid-argument error.
    bool EvaluateCondition(const M2::Expression& expression, bool logged = false);

    MacroScope& scope() noexcept { return *scope_; }
    CallHandler* calls() const noexcept { return calls_; }
    LogSink* log() const noexcept { return log_; }

private:
    MacroScope* scope_;
    CallHandler* calls_;
    LogSink* log_;
};

}  // namespace qm
