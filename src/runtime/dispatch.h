// Call dispatch: a call in a macro names a built-in (resolved by exact, case-sensitive name),
// whose argument count is checked against the catalogue before it runs; a name that is no
// built-in goes to the running macro's own functions, when a fallback for them is set, and
// otherwise fails with "Unknown function".
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/evaluator.h"
#include "core/value.h"

namespace qm {

class ObjectModel;
class DialogUi;
class DateFormatter;

// What the built-ins of one run reach outside the value model. Every pointer may be null: the
// functions that need the missing service then fail with a macro error (the date functions use
// the user's default locale instead).
struct RuntimeServices {
    ObjectModel* objects = nullptr;
    DialogUi* dialogs = nullptr;
    const DateFormatter* dates = nullptr;
    std::u16string macroName;  // the caption of the macro's dialog boxes
};

// Resolves the name, checks the argument count and runs the built-in; "void" functions return
// the empty value. Raises MacroError for every failure a macro can cause (an unknown name, a wrong
// count, an argument of the wrong kind), Macro::ExitException for ExitMacro and RunCancelled when
// the user cancels a dialog.
MacroValue callBuiltin(RuntimeServices& services, std::u16string_view name, std::span<Argument> args);

// A call whose name is no built-in: returns the result when the running macro defines a function
// of that name, nothing when it does not.
using FunctionFallback = std::function<std::optional<MacroValue>(const M2::Call& call, std::span<Argument> args)>;

// The call handler of a run's evaluator. Built-ins come first: a macro cannot redefine one.
class BuiltinCallHandler final : public CallHandler {
public:
    explicit BuiltinCallHandler(RuntimeServices& services, FunctionFallback fallback = {});

    void SetFallback(FunctionFallback fallback) { fallback_ = std::move(fallback); }
    RuntimeServices& services() noexcept { return *services_; }

    MacroValue Call(const M2::Call& call, std::span<Argument> args) override;

private:
    RuntimeServices* services_;
    FunctionFallback fallback_;
};

}  // namespace qm
