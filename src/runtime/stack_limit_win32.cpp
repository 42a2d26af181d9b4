#include <windows.h>

#include "runtime/stack_limit.h"

namespace qm {

std::uintptr_t StackLowLimit() {
    ULONG_PTR low = 0;
    ULONG_PTR high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    // The lowest pages are the guard region that grows the committed stack; stay above them.
    constexpr std::uintptr_t kGuardRegion = 64 * 1024;
    return low == 0 ? 0 : static_cast<std::uintptr_t>(low) + kGuardRegion;
}

}  // namespace qm
