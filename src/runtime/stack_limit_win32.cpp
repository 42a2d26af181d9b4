#include <windows.h>

#include "runtime/stack_limit.h"

namespace qm {

std::uintptr_t StackLowLimit() {
    // The thread's stack is one reservation: its allocation base is the lowest address the stack
    // can grow to.
    MEMORY_BASIC_INFORMATION info{};
    if (VirtualQuery(&info, &info, sizeof info) == 0 || info.AllocationBase == nullptr) return 0;
    // The lowest pages hold the guard region that grows the committed stack; stay above them.
    constexpr std::uintptr_t kGuardRegion = 64 * 1024;
    return reinterpret_cast<std::uintptr_t>(info.AllocationBase) + kGuardRegion;
}

}  // namespace qm
