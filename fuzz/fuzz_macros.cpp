// Bytes as a macro list document (UTF-8 turned into the UTF-16 text the reader takes), and as an
// "Edit XML" single macro. Whatever reads must write, read again and write the same text again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/text.h"
#include "macros/macro_xml.h"
#include "xml/xml_error.h"

namespace {

template <class Read, class Write>
void RoundTrip(std::u16string_view text, Read read, Write write) {
    decltype(read(text)) first;
    try {
        first = read(text);
    } catch (const qm::xml::XmlError&) {
        return;
    }
    const std::u16string written = write(*first);
    const auto second = read(written);  // what was written must read: an error here is a finding
    if (write(*second) != written) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = qm::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    RoundTrip(
        text, [](std::u16string_view t) { return qm::M2::ReadMacros(t); },
        [](const qm::M2::Macros& m) { return qm::M2::WriteMacros(m); });
    RoundTrip(
        text, [](std::u16string_view t) { return qm::M2::ImportMacroXml(t); },
        [](const qm::M2::Macro& m) { return qm::M2::WriteMacroXml(m); });
    return 0;
}
