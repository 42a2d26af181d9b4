#include "xml/file_batch.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

#include "xml/file_io.h"

namespace qm::io {
namespace {

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::char_traits<char>::length(mode));
    return File(_wfopen(path.c_str(), wmode.c_str()));
#else
    return File(std::fopen(path.c_str(), mode));
#endif
}

// Enough flushes in flight for the file system to commit them together.
constexpr std::size_t kFlushers = 16;

}  // namespace

void FileBatch::Replace(const std::filesystem::path& path, std::string_view bytes) {
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    std::filesystem::path temp = path;
    temp += ".tmp" + std::to_string(stamp % 1000000007) + "-" + std::to_string(counter++);
    {
        File f = Open(temp, "wb");
        if (!f) throw FileError(path, "cannot create a temporary file beside it");
        bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f.get()) == bytes.size();
        ok = ok && std::fflush(f.get()) == 0 && !std::ferror(f.get());
        if (std::fclose(f.release()) != 0) ok = false;
        if (!ok) {
            std::error_code ignored;
            std::filesystem::remove(temp, ignored);
            throw FileError(path, "cannot write the file (is the disk full?)");
        }
    }
    std::error_code ec;
    std::filesystem::rename(temp, path, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(temp, ignored);
        throw FileError(path, "cannot replace the file: " + ec.message());
    }
    unsynced_.push_back(path);
}

void FileBatch::Sync() {
    std::sort(unsynced_.begin(), unsynced_.end());
    unsynced_.erase(std::unique(unsynced_.begin(), unsynced_.end()), unsynced_.end());
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> failed{unsynced_.size()};
    auto flush = [&] {
        for (std::size_t i = next++; i < unsynced_.size(); i = next++) {
            File f = Open(unsynced_[i], "rb+");
            if (f && std::fflush(f.get()) == 0) {
                SyncFile(f.get());
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
    if (failed < unsynced_.size()) {
        const std::filesystem::path path = unsynced_[failed];
        unsynced_.clear();
        throw FileError(path, "cannot flush the file to disk");
    }
    unsynced_.clear();
}

}  // namespace qm::io
