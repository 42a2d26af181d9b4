// Many files replaced in a row, as a notebook folder saves the pages of a run. Each file is
// replaced atomically at once (a temporary file beside it, renamed over it), so a process that
// dies never leaves a file half written; but the files reach the disk only at Sync, all
// together. Flushing each file as it is written costs one journal commit per file, which
// dominates saving thousands of small files; flushes that run side by side are committed
// together, so Sync flushes many files at a time.
//
// Where the file system can swap two names in one step, the file a replacement displaces is not
// deleted but kept, under the temporary name, as the next replacement's temporary file. Deleting a
// file and creating another for every save makes some file systems search ever longer for a free
// file record (they skip the records of files deleted moments ago); reusing one never frees one.
// A displaced file that has another name (a hard link) is never written over: it is let go.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace qm::io {

class FileBatch {
public:
    FileBatch() = default;
    FileBatch(const FileBatch&) = delete;
    FileBatch& operator=(const FileBatch&) = delete;
    // Removes the spare temporary file.
    ~FileBatch();

    // Throws FileError; on failure the old file is untouched and no temporary is left.
    void Replace(const std::filesystem::path& path, std::string_view bytes);
    // Flushes every file replaced since the last Sync to the disk. Throws FileError naming a
    // file that could not be flushed.
    void Sync();
    bool empty() const noexcept { return unsynced_.empty(); }

private:
    void DropSpare() noexcept;

    std::vector<std::filesystem::path> unsynced_;
    // A displaced old file, kept under a temporary name beside the files to be reused; or empty.
    std::filesystem::path spare_;
};

}  // namespace qm::io
