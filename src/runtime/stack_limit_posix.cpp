#include <pthread.h>

#include "runtime/stack_limit.h"

namespace qm {

std::uintptr_t StackLowLimit() {
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) != 0) return 0;
    void* address = nullptr;
    std::size_t size = 0;
    const int rc = pthread_attr_getstack(&attr, &address, &size);
    pthread_attr_destroy(&attr);
    if (rc != 0) return 0;
    return reinterpret_cast<std::uintptr_t>(address);
}

}  // namespace qm
