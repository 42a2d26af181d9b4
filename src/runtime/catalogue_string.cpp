// The String family: length, parts, splitting, and comparisons that may ignore case. Texts are
// UTF-16 and every position and length counts code units. Comparing with ignoreCase lower-cases
// both texts one code unit at a time, so the lengths never change and letters that differ only in
// case compare equal.
#include <algorithm>

#include "runtime/builtin.h"

namespace qm {
namespace {

// The simple lower-case mapping of the value model, one unit at a time: the same folding as the
// case-insensitive orderings used for sorting, on every platform.
std::u16string LowerCodeUnits(std::u16string text) {
    for (char16_t& unit : text) unit = LowerCaseUnit(unit);
    return text;
}

// The operands of a comparison: both texts, already folded when ignoreCase is set.
struct Operands {
    std::u16string first;
    std::u16string second;
};

Operands Compared(std::span<Argument> args) {
    Operands operands{args[0].value.AsString(), args[1].value.AsString()};
    if (args[2].value.AsBoolean()) {
        operands.first = LowerCodeUnits(std::move(operands.first));
        operands.second = LowerCodeUnits(std::move(operands.second));
    }
    return operands;
}

// Ordinal order by code unit; a proper prefix sorts first.
int Order(std::span<Argument> args) {
    Operands o = Compared(args);
    int c = o.first.compare(o.second);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

MacroValue Bool(bool b) { return MacroValue(b); }

MacroValue StringEquals(RuntimeServices&, std::span<Argument> args) {
    Operands o = Compared(args);
    return Bool(o.first == o.second);
}
MacroValue StringDoesNotEqual(RuntimeServices&, std::span<Argument> args) {
    Operands o = Compared(args);
    return Bool(o.first != o.second);
}
MacroValue StringLessThan(RuntimeServices&, std::span<Argument> args) { return Bool(Order(args) < 0); }
MacroValue StringGreaterThan(RuntimeServices&, std::span<Argument> args) { return Bool(Order(args) > 0); }
MacroValue StringLessThanOrEqualTo(RuntimeServices&, std::span<Argument> args) { return Bool(Order(args) <= 0); }
MacroValue StringGreaterThanOrEqualTo(RuntimeServices&, std::span<Argument> args) { return Bool(Order(args) >= 0); }

// An empty second text occurs in every text, at its start and at its end.
MacroValue StringContains(RuntimeServices&, std::span<Argument> args) {
    Operands o = Compared(args);
    return Bool(o.first.find(o.second) != std::u16string::npos);
}
MacroValue StringStartsWith(RuntimeServices&, std::span<Argument> args) {
    Operands o = Compared(args);
    return Bool(o.first.starts_with(o.second));
}
MacroValue StringEndsWith(RuntimeServices&, std::span<Argument> args) {
    Operands o = Compared(args);
    return Bool(o.first.ends_with(o.second));
}

MacroValue StringLength(RuntimeServices&, std::span<Argument> args) {
    std::u16string scratch;
    return MacroValue(static_cast<std::int32_t>(TextArgument(args[0], scratch).size()));
}

// A negative offset starts at 0; an offset past the end or a negative count gives the empty text;
// a count reaching past the end stops at the end.
MacroValue StringSubstring(RuntimeServices&, std::span<Argument> args) {
    std::u16string scratch;
    const std::u16string_view text = TextArgument(args[0], scratch);
    const std::int64_t offset = args[1].value.AsInteger();
    const std::int64_t count = args[2].value.AsInteger();
    const std::int64_t start = std::max<std::int64_t>(offset, 0);
    const auto length = static_cast<std::int64_t>(text.size());
    if (start > length || count < 0) return MacroValue(std::u16string());
    const std::int64_t take = std::min(count, length - start);
    return MacroValue(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(take)));
}

// An empty delimiter splits into single code units; otherwise the text after the last delimiter is
// the last element, even when it is empty, so "a,b," gives "a", "b" and "".
MacroValue StringSplit(RuntimeServices&, std::span<Argument> args) {
    const std::u16string text = args[0].value.AsString();
    const std::u16string delimiter = args[1].value.AsString();
    auto parts = std::make_shared<MacroArray>();
    if (delimiter.empty()) {
        for (char16_t unit : text) parts->PushBack(MacroValue(std::u16string(1, unit)));
        return MacroValue(std::move(parts));
    }
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(delimiter, from)) != std::u16string::npos; from = at + delimiter.size()) {
        parts->PushBack(MacroValue(text.substr(from, at - from)));
    }
    parts->PushBack(MacroValue(text.substr(from)));
    return MacroValue(std::move(parts));
}

constexpr std::u16string_view kFirst = u"First string to compare";
constexpr std::u16string_view kSecond = u"Second string to compare";
constexpr std::u16string_view kIgnoreCase = u"Ignores the case of the strings if set to true";

BuiltinDefinition Comparison(std::u16string_view name, std::u16string_view description, BuiltinFn fn) {
    return {{std::u16string(name), u"Bool", std::u16string(description),
             {{u"first", u"String", std::u16string(kFirst)},
              {u"second", u"String", std::u16string(kSecond)},
              {u"ignoreCase", u"Bool", std::u16string(kIgnoreCase)}}},
            fn};
}

}  // namespace

std::vector<BuiltinDefinition> StringBuiltins() {
    return {
        Comparison(u"String_Contains", u"Returns true if the first string contains the second string, false otherwise",
                   &StringContains),
        Comparison(u"String_DoesNotEqual", u"Returns true if the given two strings are not equal, false otherwise",
                   &StringDoesNotEqual),
        Comparison(u"String_EndsWith", u"Returns true if the first string ends with the second string, false otherwise",
                   &StringEndsWith),
        Comparison(u"String_Equals", u"Returns true if the given two strings are equal, false otherwise",
                   &StringEquals),
        Comparison(u"String_GreaterThan",
                   u"Returns true if the first string is comes after the second string, false otherwise",
                   &StringGreaterThan),
        Comparison(u"String_GreaterThanOrEqualTo",
                   u"Returns true if the first string is comes after the second string or compares equal, false "
                   u"otherwise",
                   &StringGreaterThanOrEqualTo),
        {{u"String_Length", u"Numeric", u"Returns the length of the given string",
          {{u"string", u"String", u"String return the length of"}}},
         &StringLength},
        Comparison(u"String_LessThan",
                   u"Returns true if the first string is comes before the second string, false otherwise",
                   &StringLessThan),
        Comparison(u"String_LessThanOrEqualTo",
                   u"Returns true if the first string is comes before the second string or compares equal, false "
                   u"otherwise",
                   &StringLessThanOrEqualTo),
        {{u"String_Split", u"Array<String>", u"Splits the current string into an array of strings using the given delimiter",
          {{u"string", u"String", u"String to split into an array"},
           {u"delimiter", u"String", u"Delimiter to split the string using"}}},
         &StringSplit},
        Comparison(u"String_StartsWith",
                   u"Returns true if the first string starts with the second string, false otherwise",
                   &StringStartsWith),
        {{u"String_Substring", u"String",
          u"Returns a part of the given string. The part starts from the 0-based offset and the length of it is count",
          {{u"string", u"String", u"String to return the part of"},
           {u"offset", u"Numeric", u"0-based start index of the substring"},
           {u"count", u"Numeric", u"Length of the substring"}}},
         &StringSubstring},
    };
}

}  // namespace qm
