// Appending a Unicode code point to UTF-16 text: one unit, or a surrogate pair beyond U+FFFF.
// Kept apart from text.h so that the few readers that decode characters include only this.
#pragma once

#include <string>

namespace qm {

inline void AppendCodePoint(std::u16string& out, char32_t cp) {
    if (cp >= 0x10000) {
        cp -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (cp >> 10));
        out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    } else {
        out += static_cast<char16_t>(cp);
    }
}

}  // namespace qm
