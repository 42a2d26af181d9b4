// The numbered user-interface texts of a macro run (window titles, box texts), in one table. The
// numbers are those of the add-in's string table, so every front end shows the same texts.
#pragma once

#include <string_view>

namespace qm::strings {

enum class Id : int {
    Error = 65,
    Cancelled = 66,
    ConfirmMultiplePages = 107,
    DoNotAskAgain = 108,
    RunningMacroBody = 112,
    RunningMacroTitle = 113,
};

// The English text of an entry; templates carry "[1]" placeholders.
constexpr std::u16string_view Text(Id id) {
    switch (id) {
        case Id::Error: return u"Error";
        case Id::Cancelled:
            return u"Cancelled - You may have to undo to fully revert the operation. Waiting for the current "
                   u"operation to complete.";
        case Id::ConfirmMultiplePages:
            return u"The macro \"[1]\" is attempting to modify multiple pages. You will not be able to undo this "
                   u"operation. Do you want to continue?";
        case Id::DoNotAskAgain: return u"&Do not ask for this macro again in this session";
        case Id::RunningMacroBody: return u"Running macro \"[1]\"";
        case Id::RunningMacroTitle: return u"Running Macro";
    }
    return {};
}

}  // namespace qm::strings
