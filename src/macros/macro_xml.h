// Macro documents as text: the macro list file's content, and the single-macro text of the
// editor's "Edit XML" box. All of them raise xml::XmlError for text that does not read.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "macros/m2_schema.h"
#include "xml/element.h"

namespace qm::M2 {

// Reads a macro list into `into` (which keeps the defaults its creator gave it). The root element
// is recognised only after an XML declaration.
void ReadMacros(std::u16string_view text, Macros& into, const xml::ReadContext& context = {});
std::shared_ptr<Macros> ReadMacros(std::u16string_view text);

// The macro list file's text: declaration, indented.
std::u16string WriteMacros(const Macros& macros);

// The "Edit XML" text of one macro: the macro alone as the root, declaration, indented.
std::u16string WriteMacroXml(const Macro& macro);

// Imports an edited "Edit XML" text into a fresh macro. A text longer than five characters that
// does not begin with "<?xml" gets the declaration `<?xml version="1.0"?>` put in front, so that
// the reader recognises the root.
std::shared_ptr<Macro> ImportMacroXml(std::u16string_view text);
std::u16string WithImportDeclaration(std::u16string_view text);

}  // namespace qm::M2
