// Many files replaced in a row, as a notebook folder saves the pages of a run. Each file is
// replaced atomically at once (a temporary file beside it, renamed over it), so a process that
// dies never leaves a file half written; but the files reach the disk only at Sync, all
// together. Flushing each file as it is written costs one journal commit per file, which
// dominates saving thousands of small files; flushes that run side by side are committed
// together, so Sync flushes many files at a time.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace qm::io {

class FileBatch {
public:
    // Throws FileError; on failure the old file is untouched and no temporary is left.
    void Replace(const std::filesystem::path& path, std::string_view bytes);
    // Flushes every file replaced since the last Sync to the disk. Throws FileError naming a
    // file that could not be flushed.
    void Sync();
    bool empty() const noexcept { return unsynced_.empty(); }

private:
    std::vector<std::filesystem::path> unsynced_;
};

}  // namespace qm::io
