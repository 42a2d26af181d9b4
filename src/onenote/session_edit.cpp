// QueryText, InsertObject and SortObjects.
#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/session.h"

namespace qm::onenote {

MacroValue Session::QueryText(const MacroValue& scope, const MacroValue&, const MacroValue&) {
    if (scope.kind() != Kind::Object || !scope.object()) {
        throw MacroError(FormatMessage(msg::kExpectedObjectSecond, {u"QueryText"}));
    }
    return MacroValue(std::make_shared<MacroArray>());
}

MacroValue Session::InsertObject(const MacroValue&, const MacroValue&, const MacroValue&) {
    throw MacroError(u"InsertObject is not available yet");
}

MacroValue Session::SortObjects(const MacroValue&, const MacroValue&, const MacroValue&) {
    throw MacroError(u"SortObjects is not available yet");
}

}  // namespace qm::onenote
