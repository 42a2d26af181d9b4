// What every platform's reader decides before its parser sees a document, so that they all agree:
// whether the document is declared, and refusing null characters and document type declarations.
#pragma once

#include <string_view>

namespace qm::xml {

// Whether the document starts with "<?xml" and a blank, after an optional byte order mark.
bool StartsWithDeclaration(std::u16string_view text);

// Throws XmlError at the first null character, or at a document type declaration in the prolog
// (which refuses entity tricks before any of them is even declared).
void RefuseUnreadable(std::u16string_view text);

}  // namespace qm::xml
