#include "macros/user_folder.h"

namespace qm {

std::filesystem::path UserFolder() {
    if (std::filesystem::path home = platform::HomeOverride(); !home.empty()) return home;
    return platform::DefaultUserFolder();
}

std::filesystem::path EnsureUserFolder() {
    std::filesystem::path folder = UserFolder();
    std::filesystem::create_directories(folder);
    return folder;
}

}  // namespace qm
