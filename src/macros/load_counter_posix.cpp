// The load counter without a registry: decimal text in the file "LoadState" of the per-user
// folder. Text that is not a decimal number in range is treated as the registry treats a value of
// the wrong type: read as 0 and replaced by 0.
#include <string>
#include <string_view>
#include <system_error>

#include "macros/load_counter.h"
#include "macros/macro_store.h"
#include "xml/file_io.h"

namespace qm::macros {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Surrounding blanks (a line break added by an editor) are allowed; anything else is not a value.
bool ParseCounter(std::string_view text, std::uint32_t& out) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    if (text.empty() || text.size() > 10) return false;
    std::uint64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (value > UINT32_MAX) return false;
    out = static_cast<std::uint32_t>(value);
    return true;
}

class FileLoadCounter final : public LoadCounter {
public:
    explicit FileLoadCounter(std::filesystem::path folder)
        : folder_(std::move(folder)), path_(folder_ / kLoadStateFileName) {}

    std::uint32_t Read() override {
        std::error_code ec;
        if (!std::filesystem::exists(path_, ec)) return 0;
        std::string bytes;
        try {
            bytes = io::ReadFileBytes(path_);
        } catch (const io::FileError&) {
            return 0;
        }
        std::uint32_t value = 0;
        if (ParseCounter(bytes, value)) return value;
        Write(0);
        return 0;
    }

    bool Write(std::uint32_t value) override {
        try {
            std::error_code ec;
            std::filesystem::create_directories(folder_, ec);
            io::WriteFileAtomically(path_, std::to_string(value));
            return true;
        } catch (const io::FileError&) {
            return false;
        }
    }

    std::u16string Location() const override { return PathText(path_); }

private:
    std::filesystem::path folder_;
    std::filesystem::path path_;
};

}  // namespace

std::unique_ptr<LoadCounter> MakeLoadCounter(const std::filesystem::path& folder) {
    return std::make_unique<FileLoadCounter>(folder);
}

}  // namespace qm::macros
