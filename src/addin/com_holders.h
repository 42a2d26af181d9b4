// Holders for everything COM hands out that must be given back: interface pointers (Release; the
// holder lives in xml/com_ptr_win32.h for the layers below), BSTRs (SysFreeString) and VARIANTs
// (VariantClear). Each owns exactly one reference or allocation and gives it back when it goes;
// none is copied by accident.
#pragma once

#include "addin/win32.h"
#include "xml/com_ptr_win32.h"

#include <string>
#include <string_view>
#include <utility>

namespace qm::addin {

using qm::ComPtr;

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
