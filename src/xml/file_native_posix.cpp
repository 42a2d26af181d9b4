#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <system_error>

#include "xml/file_io.h"

namespace qm::io {

std::FILE* OpenFile(const std::filesystem::path& path, const char* mode) { return std::fopen(path.c_str(), mode); }

void SyncFile(std::FILE* file) { ::fsync(::fileno(file)); }

bool RenameOver(const std::filesystem::path& from, const std::filesystem::path& to, std::string& error) {
    std::error_code ec;
    std::filesystem::rename(from, to, ec);
    if (ec) error = ec.message();
    return !ec;
}

bool ExchangeFiles(const std::filesystem::path& from, const std::filesystem::path& to) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) == 0;
}

bool HasOtherNames(const std::filesystem::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) != 0 || status.st_nlink != 1;
}

}  // namespace qm::io
