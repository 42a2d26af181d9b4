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

}  // namespace qm::io
