// Checks a macro without running it, for the faults a run would otherwise meet only when it gets
// there: calls of unknown functions and calls with the wrong number of arguments, an Else that can
// never pair with an If, and Break or Continue that no loop can take. Each finding carries the
// message the run would fail with.
//
// The rules, statement by statement (commented-out statements are never run, so never checked):
//  - A call must name a built-in (its catalogue arity; Array takes any number) or a Function of
//    the macro (its parameter count). Built-ins come first, as at run time.
//  - An Else pairs with the statement just before it in the same block when that is an If, or a
//    ForEach or While whose body ends with an If (the last If run inside the loop pairs with an
//    Else right after it) or with such a loop in turn. Anything else before it, or nothing, is
//    "Else without If". A loop that runs its body zero times leaves nothing to pair with, which
//    only a run can tell: such an Else is accepted.
//  - Break and Continue need an enclosing ForEach or While within the same function (a Function
//    is a boundary: they never leave one). A count written as a literal must be at least 1 and at
//    most the number of loops around the statement; an absent count is 1. Counts computed at run
//    time are checked for the enclosing loop only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "macros/m2_schema.h"
#include "macros/text_form.h"

namespace qm {

struct Finding {
    // The statement, as a path into the macro's XML: element names with their position among
    // the siblings of that name, from 1 ("Macro/While[2]/If[1]", "Macro/Function[1]/Break[1]").
    std::u16string path;
    // The statement's line in the text form the macro was read from; 0 without a line map.
    int line = 0;
    std::u16string message;
};

// Findings in document order: the macro's statements, then its functions. `root` names the macro
// element in the paths (a macro inside a list: "Macros/Macro[3]").
std::vector<Finding> CheckMacro(const M2::Macro& macro, const M2::TextFormLines* lines = nullptr,
                                std::u16string_view root = u"Macro");

}  // namespace qm
