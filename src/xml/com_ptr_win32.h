// A holder for a COM interface pointer: it owns exactly one reference and gives it back (Release)
// when it goes. Every Windows layer that talks COM (the XML reader, the per-user folder, the
// add-in) holds its interface pointers in it.
#pragma once

#include <windows.h>
#include <unknwn.h>
#undef FormatMessage  // the system's macro; ours is qm::FormatMessage

#include <utility>

namespace qm {

template <class T>
class ComPtr {
public:
    ComPtr() = default;
    // Takes over a reference the caller owns.
    static ComPtr Adopt(T* raw) noexcept {
        ComPtr p;
        p.ptr_ = raw;
        return p;
    }
    // Adds a reference of its own.
    static ComPtr Share(T* raw) noexcept {
        if (raw) raw->AddRef();
        return Adopt(raw);
    }
    ComPtr(const ComPtr& other) noexcept : ptr_(other.ptr_) {
        if (ptr_) ptr_->AddRef();
    }
    ComPtr(ComPtr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(ptr_, other.ptr_);
        return *this;
    }
    ~ComPtr() { Reset(); }

    void Reset() noexcept {
        if (T* old = std::exchange(ptr_, nullptr)) old->Release();
    }
    T* get() const noexcept { return ptr_; }
    T* operator->() const noexcept { return ptr_; }
    explicit operator bool() const noexcept { return ptr_ != nullptr; }
    // For out parameters: releases what is held first.
    T** Out() noexcept {
        Reset();
        return &ptr_;
    }
    // Hands the reference to the caller.
    T* Detach() noexcept { return std::exchange(ptr_, nullptr); }

    // The object's interface U, or null when it has none.
    template <class U>
    ComPtr<U> As(const IID& iid) const noexcept {
        ComPtr<U> other;
        if (ptr_ && FAILED(ptr_->QueryInterface(iid, reinterpret_cast<void**>(other.Out())))) other.Reset();
        return other;
    }

private:
    T* ptr_ = nullptr;
};

}  // namespace qm
