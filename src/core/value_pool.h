// Where array element values live. An array built in a loop makes one small shared value per
// element and drops them all together; the general allocator spends more on that than the loop
// does. Element values therefore come from a block pool: one region reserved on first use and cut
// into equal blocks, recycled through a free list per thread.
//
// The region is bounded (kPoolBytes), so a run that builds huge arrays takes what does not fit
// from the general allocator as before, and a long-lived host keeps at most that much after the
// run. Blocks freed by another thread than the one that took them join that thread's list; a
// thread's list is simply dropped when the thread ends (the region itself lives as long as the
// process).
#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace qm {

namespace pool {

inline constexpr std::size_t kPoolBytes = std::size_t{16} << 20;
inline constexpr std::size_t kBlockBytes = 64;

// A block of kBlockBytes from the region, or null when the region is used up.
void* TakeBlock() noexcept;
// Whether the address is a block of the region.
bool Owns(const void* p) noexcept;
// Returns a block of the region for reuse.
void GiveBack(void* p) noexcept;

}  // namespace pool

// The allocator for std::allocate_shared of element values: single objects that fit a block come
// from the pool, everything else from operator new.
template <class T>
struct ElementAllocator {
    using value_type = T;
    ElementAllocator() noexcept = default;
    template <class U>
    ElementAllocator(const ElementAllocator<U>&) noexcept {}

    T* allocate(std::size_t n) {
        if constexpr (sizeof(T) <= pool::kBlockBytes && alignof(T) <= alignof(std::max_align_t)) {
            if (n == 1) {
                if (void* block = pool::TakeBlock()) return static_cast<T*>(block);
            }
        }
        return static_cast<T*>(::operator new(n * sizeof(T)));
    }
    void deallocate(T* p, std::size_t n) noexcept {
        if (pool::Owns(p)) {
            pool::GiveBack(p);
        } else {
            ::operator delete(p);
        }
    }
    template <class U>
    bool operator==(const ElementAllocator<U>&) const noexcept { return true; }
};

}  // namespace qm
