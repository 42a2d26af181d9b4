// What tests need to know of the platform they run on.
#pragma once

#include <string_view>

#ifdef _WIN32
#include <windows.h>
#endif

namespace qm::test {

// Whether the tests run under Wine. Its XmlLite is more lenient than the system's own: it reads
// undefined entities and raw control characters, and stops at blanks before the root element of
// a document without a declaration. Tests of exactly that skip it there.
inline bool UnderWine() {
#ifdef _WIN32
    const HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && ::GetProcAddress(ntdll, "wine_get_version") != nullptr;
#else
    return false;
#endif
}

// Whether a read error is the one expected. The words between the document's name and the
// position (" (line ...") are the XML parser's own; they are compared where libxml2 reads, which
// the expected texts quote, and elsewhere only the name and the position are.
inline bool SameReadError(std::u16string_view actual, std::u16string_view expected) {
#ifdef _WIN32
    const std::size_t position = expected.rfind(u" (line ");
    const std::size_t words = expected.find(u": ");
    if (position == std::u16string_view::npos || words == std::u16string_view::npos || words > position) {
        return actual == expected;
    }
    return actual.starts_with(expected.substr(0, words + 2)) && actual.ends_with(expected.substr(position));
#else
    return actual == expected;
#endif
}

}  // namespace qm::test
