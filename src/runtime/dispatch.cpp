#include "runtime/dispatch.h"

#include <cstdint>
#include <stdexcept>
#include <string>

#include "core/error.h"
#include "core/expression.h"
#include "core/format.h"
#include "core/messages.h"
#include "runtime/builtin.h"
#include "runtime/messages.h"

namespace qm {
namespace {

MacroValue Invoke(const BuiltinEntry& entry, RuntimeServices& services, std::span<Argument> args) {
    if (entry.arity >= 0 && args.size() != static_cast<std::size_t>(entry.arity)) {
        FailMacro(msg::kWrongArgumentCount,
                  {entry.info->name, IntegerText(entry.arity), IntegerText(static_cast<std::int64_t>(args.size()))});
    }
    try {
        return entry.fn(services, args);
    } catch (const std::invalid_argument&) {
        // The value model refuses a conversion that has no meaning (an array read as a text, a
        // number read as a date); the macro sees which function it called wrongly.
        throw MacroError(FormatMessage(msg::kCannotConvertArgument, {entry.info->name}));
    }
}

}  // namespace

MacroValue callBuiltin(RuntimeServices& services, std::u16string_view name, std::span<Argument> args) {
    const BuiltinEntry* entry = FindBuiltinEntry(name);
    if (!entry) FailMacro(msg::kUnknownFunction, {name});
    return Invoke(*entry, services, args);
}

BuiltinCallHandler::BuiltinCallHandler(RuntimeServices& services, FunctionFallback fallback)
    : services_(&services), fallback_(std::move(fallback)) {}

MacroValue BuiltinCallHandler::Call(const M2::Call& call, std::span<Argument> args) {
    // The call site remembers its built-in, so a call in a loop looks its name up once. The name is
    // compared on every call (cheap next to the lookup): a remembered entry always is the call's.
    const auto* entry = reinterpret_cast<const BuiltinEntry*>(static_cast<std::uintptr_t>(call.target.Load()));
    if (!entry || !SameText(entry->info->name, call.name)) {
        entry = FindBuiltinEntry(call.name);
        if (entry) call.target.Store(reinterpret_cast<std::uintptr_t>(entry));
    }
    if (entry) return Invoke(*entry, *services_, args);
    if (fallback_) {
        if (std::optional<MacroValue> result = fallback_(call, args)) return std::move(*result);
    }
    FailMacro(msg::kUnknownFunction, {call.name});
}

}  // namespace qm
