// What every platform's reader decides before its parser sees a document, so that they all agree:
// whether the document is declared, refusing null characters and document type declarations,
// and the bytes the parser reads.
#pragma once

#include <string>
#include <string_view>

namespace qm::xml {

// Whether the document starts with "<?xml" and a blank, after an optional byte order mark.
bool StartsWithDeclaration(std::u16string_view text);

// Throws XmlError at the first null character, or at a document type declaration in the prolog
// (which refuses entity tricks before any of them is even declared).
void RefuseUnreadable(std::u16string_view text);

// The document as UTF-8 for a parser; with `shield`, illegal characters shielded (xml_chars.h).
// Unpaired surrogates otherwise become U+FFFD, as every reader sees them.
std::string ParserInput(std::u16string_view text, bool shield);

}  // namespace qm::xml
