#include "xml/file_batch.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>

#include "xml/file_io.h"

namespace qm::io {

namespace {

// Enough flushes in flight for the file system to commit them together.
constexpr std::size_t kFlushers = 16;

}  // namespace

FileBatch::~FileBatch() { DropSpare(); }

void FileBatch::DropSpare() noexcept {
    if (spare_.empty()) return;
    std::error_code ignored;
    std::filesystem::remove(spare_, ignored);
    spare_.clear();
}

void FileBatch::Replace(const std::filesystem::path& path, std::string_view bytes) {
    if (!spare_.empty() && spare_.parent_path() != path.parent_path()) DropSpare();
    std::filesystem::path temp = spare_.empty() ? TemporaryBeside(path) : std::move(spare_);
    spare_.clear();
    WriteNewContent(temp, bytes, false, path);
    if (ExchangeFiles(temp, path)) {
        if (HasOtherNames(temp)) {
            std::error_code ignored;
            std::filesystem::remove(temp, ignored);
        } else {
            spare_ = std::move(temp);
        }
    } else {
        MoveIntoPlace(temp, path);
    }
    unsynced_.push_back(path);
}

void FileBatch::Sync() {
    DropSpare();
    std::sort(unsynced_.begin(), unsynced_.end());
    unsynced_.erase(std::unique(unsynced_.begin(), unsynced_.end()), unsynced_.end());
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> failed{unsynced_.size()};
    auto flush = [&] {
        for (std::size_t i = next++; i < unsynced_.size(); i = next++) {
            if (std::FILE* f = OpenFile(unsynced_[i], "rb+")) {
                SyncFile(f);
                std::fclose(f);
            } else {
                failed = i;
            }
        }
    };
    std::vector<std::thread> flushers;
    const std::size_t count = std::min(kFlushers, unsynced_.size());
    for (std::size_t i = 1; i < count; ++i) flushers.emplace_back(flush);
    flush();
    for (std::thread& t : flushers) t.join();
    const std::size_t failedAt = failed;
    if (failedAt < unsynced_.size()) {
        const std::filesystem::path path = unsynced_[failedAt];
        unsynced_.clear();
        throw FileError(path, "cannot flush the file to disk");
    }
    unsynced_.clear();
}

}  // namespace qm::io
