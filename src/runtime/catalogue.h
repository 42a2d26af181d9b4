// The catalogue of the macro language's built-in functions: name, return type, reference texts and
// parameters of each, as the editor's function reference shows them. Built once, on first use,
// and never changed afterwards.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qm {

struct ParameterInfo {
    std::u16string name;
    std::u16string type;  // a type word; "out Object" marks an output parameter
    std::u16string description;
};

struct FunctionInfo {
    std::u16string name;
    std::u16string returnType;
    std::u16string description;
    std::vector<ParameterInfo> parameters;
    // 1 to 55, in name order.
    std::int32_t id = 0;

    // A single parameter named "elements..." takes any number of arguments.
    bool variadic() const { return parameters.size() == 1 && parameters.front().name == u"elements..."; }
};

using FunctionCatalogue = std::map<std::u16string, FunctionInfo, std::less<>>;

// The catalogue, ordered by name (ordinal, code unit by code unit).
const FunctionCatalogue& getFunctionCatalogue();

// The entry of a built-in by exact, case-sensitive name; null when the name is not a built-in.
// "array_length" is not Array_Length: names in macros are written as the reference shows them.
const FunctionInfo* FindBuiltin(std::u16string_view name);

}  // namespace qm
