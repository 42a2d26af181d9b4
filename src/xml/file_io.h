// Files of the system: read whole, decode XML text in whatever encoding it arrives in, and write
// so that nothing is lost: a save goes to a temporary file in the same folder, is flushed to disk
// and then renamed over the old file, so a crash or a full disk mid-save leaves the old file whole.
#pragma once

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qm::io {

class FileError : public std::runtime_error {
public:
    FileError(const std::filesystem::path& path, const std::string& what);
    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

// Throws FileError naming the file when it cannot be read.
std::string ReadFileBytes(const std::filesystem::path& path);

// Writes the bytes to a temporary file beside `path`, flushes it to disk (unless `flush` is false:
// see FileBatch) and renames it over `path`. Throws FileError; on failure the old file is
// untouched and no temporary is left.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes, bool flush = true);

// Decodes XML file bytes: UTF-16 LE or BE (with a byte order mark, or without one when the text
// starts with '<'), or UTF-8 with or without a byte order mark. The mark is not part of the text.
std::u16string DecodeXmlBytes(std::string_view bytes);

// UTF-16 little-endian bytes without a byte order mark.
std::string EncodeUtf16Le(std::u16string_view text);

// Platform seams. Opens a file as fopen does, with any name the platform allows.
std::FILE* OpenFile(const std::filesystem::path& path, const char* mode);
// Flushes an open file's data to the disk.
void SyncFile(std::FILE* file);
// Renames `from` over `to` in one step, replacing `to`; false with `error` set when it cannot.
bool RenameOver(const std::filesystem::path& from, const std::filesystem::path& to, std::string& error);
// Swaps the names of two existing files in one step, where the platform and file system can: `to`
// then names what `from` held and `from` the old file. False, with nothing changed, when it
// cannot (no such step here, or `to` does not exist).
bool ExchangeFiles(const std::filesystem::path& from, const std::filesystem::path& to);
// Whether the file is reachable under a name other than this one (a hard link).
bool HasOtherNames(const std::filesystem::path& path);
// A name for a temporary file beside `path`, unique within this process and unlikely to be taken.
std::filesystem::path TemporaryBeside(const std::filesystem::path& path);
// Writes the bytes into the file, replacing what it held, and closes it (flushed to disk when
// `flush`). Throws FileError naming `reported`; the file is removed when the write fails.
void WriteNewContent(const std::filesystem::path& file, std::string_view bytes, bool flush,
                     const std::filesystem::path& reported);
// Renames the temporary file over `path`. Throws FileError; the temporary is removed then.
void MoveIntoPlace(const std::filesystem::path& temp, const std::filesystem::path& path);

}  // namespace qm::io
