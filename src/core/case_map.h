// The platform seam of case folding: the lower-case form of one UTF-16 code unit beyond ASCII
// (ASCII is folded by LowerCaseUnit itself, the same everywhere).
#pragma once

namespace qm::platform {

char16_t LowerCaseBeyondAscii(char16_t c);

}  // namespace qm::platform
