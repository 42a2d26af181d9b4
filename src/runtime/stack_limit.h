// How far down the current thread's stack may grow. The interpreter recurses once per nested
// block and once per user-defined function call; it checks the room left before going deeper, so
// that a deeply nested or endlessly recursive macro gets a macro error instead of a crash.
#pragma once

#include <cstdint>

namespace qm {

// The lowest usable address of the calling thread's stack (stacks grow downwards on every
// platform the system runs on); 0 when the platform cannot tell.
std::uintptr_t StackLowLimit();

// The address of the calling function's frame: the real stack position even where a sanitizer
// keeps addressable locals elsewhere.
#define QM_CURRENT_FRAME() reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0))

}  // namespace qm
