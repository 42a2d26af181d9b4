// What the families of built-in functions share: the signature of a built-in, the definition
// table each family hands to the catalogue, and small helpers for failing and converting.
#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "core/evaluator.h"
#include "core/value.h"
#include "runtime/catalogue.h"
#include "runtime/dispatch.h"

namespace qm {

// A built-in receives exactly as many arguments as its catalogue entry lists (any number for a
// variadic one): the dispatcher has checked the count.
using BuiltinFn = MacroValue (*)(RuntimeServices& services, std::span<Argument> args);

struct BuiltinDefinition {
    FunctionInfo info;
    BuiltinFn fn;
};

// One table per family, each in its own file.
std::vector<BuiltinDefinition> ArrayBuiltins();
std::vector<BuiltinDefinition> StringBuiltins();
std::vector<BuiltinDefinition> DateTimeBuiltins();
std::vector<BuiltinDefinition> DialogBoxBuiltins();
std::vector<BuiltinDefinition> VerbBuiltins();  // the functions without a family

// A built-in as the dispatcher runs it.
struct BuiltinEntry {
    const FunctionInfo* info;
    BuiltinFn fn;
    int arity;  // -1: any number
};

// The entry for a name (exact, case-sensitive), or null.
const BuiltinEntry* FindBuiltinEntry(std::u16string_view name);

// The text of an argument (AsString), without copying an argument that is a string already: a
// view of its own text, or of `scratch` holding the conversion. Valid while both live.
inline std::u16string_view TextArgument(const Argument& arg, std::u16string& scratch) {
    if (arg.value.kind() == Kind::String) return arg.value.string();
    scratch = arg.value.AsString();
    return scratch;
}

[[noreturn]] void FailMacro(std::u16string_view templ, std::initializer_list<std::u16string_view> args = {});

}  // namespace qm
