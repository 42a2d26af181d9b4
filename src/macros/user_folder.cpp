#include "macros/user_folder.h"

#include <cstdlib>

namespace qm {

std::filesystem::path UserFolder() {
    if (const char* home = std::getenv("QUILLMARK_HOME"); home != nullptr && *home != '\0') {
        return std::filesystem::path(home);
    }
    return platform::DefaultUserFolder();
}

std::filesystem::path EnsureUserFolder() {
    std::filesystem::path folder = UserFolder();
    std::filesystem::create_directories(folder);
    return folder;
}

}  // namespace qm
