#include <io.h>
#include <windows.h>

#include <cstdio>
#include <string>
#include <system_error>

#include "xml/file_io.h"

namespace qm::io {

// Paths are wide: any file name opens, whatever the system's code page.
std::FILE* OpenFile(const std::filesystem::path& path, const char* mode) {
    const std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
    return ::_wfopen(path.c_str(), wideMode.c_str());
}

void SyncFile(std::FILE* file) { ::_commit(::_fileno(file)); }

// One step that replaces the old file, written through before it returns.
bool RenameOver(const std::filesystem::path& from, const std::filesystem::path& to, std::string& error) {
    if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
    error = std::system_category().message(static_cast<int>(::GetLastError()));
    return false;
}

// Windows has no step that swaps two names: every save takes a new temporary file.
bool ExchangeFiles(const std::filesystem::path&, const std::filesystem::path&) { return false; }

bool HasOtherNames(const std::filesystem::path&) { return true; }

}  // namespace qm::io
