// The element block pool (see value_pool.h).
#include "core/value_pool.h"

#include <atomic>
#include <cstdlib>
#include <mutex>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUILLMARK_NO_POOL 1
#endif
#endif

namespace qm::pool {

namespace {

struct FreeBlock {
    FreeBlock* next;
};

std::atomic<std::byte*> region{nullptr};
std::once_flag regionOnce;
std::atomic<std::size_t> carved{0};  // bytes of the region handed out at least once

thread_local FreeBlock* freeList = nullptr;

std::byte* Region() noexcept {
    // Reserved, not touched: the system backs only the pages that blocks are cut from.
    std::call_once(regionOnce, [] { region.store(static_cast<std::byte*>(std::malloc(kPoolBytes))); });
    return region.load(std::memory_order_relaxed);
}

}  // namespace

void* TakeBlock() noexcept {
#if defined(__SANITIZE_ADDRESS__) || defined(QUILLMARK_NO_POOL)
    // Under the address sanitizer every value has a block of its own, so that a use after free is
    // still caught.
    return nullptr;
#endif
    if (FreeBlock* block = freeList) {
        freeList = block->next;
        return block;
    }
    std::byte* base = Region();
    if (base == nullptr || carved.load(std::memory_order_relaxed) >= kPoolBytes) return nullptr;
    const std::size_t offset = carved.fetch_add(kBlockBytes, std::memory_order_relaxed);
    if (offset + kBlockBytes > kPoolBytes) return nullptr;
    return base + offset;
}

bool Owns(const void* p) noexcept {
    const auto* b = static_cast<const std::byte*>(p);
    const std::byte* base = region.load(std::memory_order_relaxed);
    return base != nullptr && b >= base && b < base + kPoolBytes;
}

void GiveBack(void* p) noexcept {
    auto* block = static_cast<FreeBlock*>(p);
    block->next = freeList;
    freeList = block;
}

}  // namespace qm::pool
