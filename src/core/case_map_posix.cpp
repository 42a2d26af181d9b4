// Without a system case mapping that is the same on every machine, one table: Latin-1, Latin
// Extended-A, Greek and Cyrillic letters; every other unit stays as it is.
#include "core/case_map.h"

namespace qm::platform {

char16_t LowerCaseBeyondAscii(char16_t c) {
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<char16_t>(c + 32);  // Latin-1
    if (c >= 0x100 && c <= 0x17F) {                                                    // Latin Extended-A
        if (c == 0x130) return u'i';
        if (c == 0x178) return 0xFF;
        if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) return (c % 2 == 1) ? c + 1 : c;
        if (c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F) return c;
        return (c % 2 == 0) ? c + 1 : c;
    }
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return static_cast<char16_t>(c + 32);  // Greek
    if (c >= 0x410 && c <= 0x42F) return static_cast<char16_t>(c + 32);                // Cyrillic
    if (c >= 0x400 && c <= 0x40F) return static_cast<char16_t>(c + 80);
    return c;
}

}  // namespace qm::platform
