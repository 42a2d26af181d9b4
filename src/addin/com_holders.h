// Holders for everything COM hands out that must be given back: interface pointers (Release),
// BSTRs (SysFreeString) and VARIANTs (VariantClear). Each owns exactly one reference or
// allocation and gives it back when it goes; none is copied by accident.
#pragma once

#include "addin/win32.h"

#include <string>
#include <string_view>
#include <utility>

namespace qm::addin {

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

// UTF-16 on both sides: char16_t and wchar_t are the same code units on Windows.
inline const wchar_t* Wide(std::u16string_view text) { return reinterpret_cast<const wchar_t*>(text.data()); }
inline std::u16string_view Utf16(const wchar_t* text, std::size_t length) {
    return {reinterpret_cast<const char16_t*>(text), length};
}

class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::u16string_view text)
        : bstr_(SysAllocStringLen(Wide(text), static_cast<UINT>(text.size()))) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(bstr_); }

    BSTR get() const noexcept { return bstr_; }
    BSTR* Out() noexcept {
        SysFreeString(std::exchange(bstr_, nullptr));
        return &bstr_;
    }
    BSTR Detach() noexcept { return std::exchange(bstr_, nullptr); }
    std::u16string Text() const { return bstr_ ? std::u16string(Utf16(bstr_, SysStringLen(bstr_))) : std::u16string(); }

private:
    BSTR bstr_ = nullptr;
};

// A new BSTR for an out parameter the caller frees.
inline BSTR AllocBstr(std::u16string_view text) { return SysAllocStringLen(Wide(text), static_cast<UINT>(text.size())); }

class Variant {
public:
    Variant() { VariantInit(&v_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&v_); }

    VARIANT* get() noexcept { return &v_; }
    const VARIANT& operator*() const noexcept { return v_; }

private:
    VARIANT v_;
};

}  // namespace qm::addin
