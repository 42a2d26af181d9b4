// The load counter in the registry: the REG_DWORD value "LoadState" under the add-in's own key in
// HKEY_CURRENT_USER. A value that is missing or of another type reads as 0 and is (re)created as
// REG_DWORD 0; the key being the add-in's registration key, creating the value there is harmless.
#include <windows.h>

#include "macros/load_counter.h"

namespace qm::macros {
namespace {

constexpr char16_t kKeyPath[] = u"Software\\Microsoft\\Office\\OneNote\\AddIns\\Quillmark.Addin";
constexpr char16_t kValueName[] = u"LoadState";

const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }

class KeyHolder {
public:
    KeyHolder() = default;
    KeyHolder(const KeyHolder&) = delete;
    KeyHolder& operator=(const KeyHolder&) = delete;
    ~KeyHolder() {
        if (key_ != nullptr) ::RegCloseKey(key_);
    }
    HKEY* out() { return &key_; }
    HKEY get() const { return key_; }

private:
    HKEY key_ = nullptr;
};

class RegistryLoadCounter final : public LoadCounter {
public:
    std::uint32_t Read() override {
        KeyHolder key;
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, Wide(kKeyPath), 0, KEY_QUERY_VALUE, key.out()) == ERROR_SUCCESS) {
            DWORD type = 0;
            DWORD data = 0;
            DWORD size = sizeof data;
            const LONG status =
                ::RegQueryValueExW(key.get(), Wide(kValueName), nullptr, &type, reinterpret_cast<BYTE*>(&data), &size);
            if (status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof data) return data;
        }
        Write(0);
        return 0;
    }

    bool Write(std::uint32_t value) override {
        KeyHolder key;
        if (::RegCreateKeyExW(HKEY_CURRENT_USER, Wide(kKeyPath), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                              nullptr, key.out(), nullptr) != ERROR_SUCCESS) {
            return false;
        }
        const DWORD data = value;
        return ::RegSetValueExW(key.get(), Wide(kValueName), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data),
                                sizeof data) == ERROR_SUCCESS;
    }

    std::u16string Location() const override {
        return std::u16string(u"HKEY_CURRENT_USER\\") + kKeyPath + u"\\" + kValueName;
    }
};

}  // namespace

std::unique_ptr<LoadCounter> MakeLoadCounter(const std::filesystem::path&) {
    return std::make_unique<RegistryLoadCounter>();
}

}  // namespace qm::macros
