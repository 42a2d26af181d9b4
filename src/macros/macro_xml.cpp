#include "macros/macro_xml.h"

#include "xml/binding.h"

namespace qm::M2 {

void ReadMacros(std::u16string_view text, Macros& into, const xml::ReadContext& context) {
    xml::ParseElement(text, into, context);
}

std::shared_ptr<Macros> ReadMacros(std::u16string_view text) {
    auto macros = std::make_shared<Macros>();
    ReadMacros(text, *macros);
    return macros;
}

std::u16string WriteMacros(const Macros& macros) {
    std::u16string out;
    xml::SerializeElement(macros, out, nullptr, false, false, true, true);
    return out;
}

std::u16string WriteMacroXml(const Macro& macro) {
    std::u16string out;
    xml::SerializeElement(macro, out, nullptr, false, false, true, true);
    return out;
}

std::u16string WithImportDeclaration(std::u16string_view text) {
    if (text.size() > 5 && !text.starts_with(u"<?xml")) return u"<?xml version=\"1.0\"?>" + std::u16string(text);
    return std::u16string(text);
}

std::shared_ptr<Macro> ImportMacroXml(std::u16string_view text) {
    auto macro = std::make_shared<Macro>();
    xml::ParseElement(WithImportDeclaration(text), *macro);
    return macro;
}

}  // namespace qm::M2
