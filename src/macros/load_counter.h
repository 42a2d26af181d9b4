// The load counter: a 32-bit value outside the macro list that every save of the list raises, so
// that a running copy of Quillmark can tell that another copy has saved the list since it loaded
// it. On Windows it is the registry value "LoadState" (REG_DWORD) under the add-in's key in
// HKEY_CURRENT_USER; elsewhere a small text file "LoadState" in the per-user folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace qm::macros {

class LoadCounter {
public:
    virtual ~LoadCounter() = default;

    // The stored value. A value of the wrong type (in the file: text that is not a decimal number)
    // reads as 0 and is replaced by 0. A missing value reads as 0; the registry creates it, the
    // file is not created, so that merely looking at the macros writes nothing into the folder.
    // Never fails: a value that cannot be read is 0.
    virtual std::uint32_t Read() = 0;

    // Stores the value; false when it could not be stored.
    virtual bool Write(std::uint32_t value) = 0;

    // Where the value lives, for messages.
    virtual std::u16string Location() const = 0;
};

// The platform's counter. `folder` is the per-user folder (where the counter file lives on
// platforms without a registry).
std::unique_ptr<LoadCounter> MakeLoadCounter(const std::filesystem::path& folder);

// The file name of the counter in the per-user folder, on platforms that keep it in a file.
inline constexpr const char* kLoadStateFileName = "LoadState";

}  // namespace qm::macros
