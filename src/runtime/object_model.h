// The OneNote side of the built-in functions: queries, insertion, sorting and the current
// position in the notebooks. The OneNote layer implements it over the open notebooks; a run with
// no notebook has none, and these functions then fail with a macro error.
#pragma once

#include "core/evaluator.h"
#include "core/value.h"

namespace qm {

// Each operation receives its arguments as evaluated (no conversion has been made) and returns
// the function's value. Failures are raised as MacroError.
class ObjectModel {
public:
    virtual ~ObjectModel() = default;

    virtual MacroValue QueryObjects(const MacroValue& type, const MacroValue& scope) = 0;
    virtual MacroValue QueryText(const MacroValue& scope, const MacroValue& value, const MacroValue& ignoreCase) = 0;
    virtual MacroValue InsertObject(const MacroValue& object, const MacroValue& type, const MacroValue& position) = 0;
    virtual MacroValue SortObjects(const MacroValue& objects, const MacroValue& by, const MacroValue& ascending) = 0;

    virtual MacroValue GetCurrentNotebook() = 0;
    virtual MacroValue GetCurrentPage() = 0;
    virtual MacroValue GetCurrentSection() = 0;
    virtual MacroValue GetCurrentSectionGroup() = 0;
    virtual MacroValue GetNotebookRoot() = 0;

    // The third argument is an output: the parent or ancestor found is stored through its slot
    // (Argument::slot, null when the argument was not a variable or element).
    virtual MacroValue GetParentOfType(const MacroValue& object, const MacroValue& type, Argument& parent) = 0;
    virtual MacroValue GetAncestorOfType(const MacroValue& object, const MacroValue& type, Argument& ancestor) = 0;
};

}  // namespace qm
