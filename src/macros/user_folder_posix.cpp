#include <cstdlib>

#include "macros/user_folder.h"

namespace qm::platform {

std::filesystem::path HomeOverride() {
    const char* home = std::getenv("QUILLMARK_HOME");
    return home != nullptr ? std::filesystem::path(home) : std::filesystem::path();
}

// $XDG_CONFIG_HOME/quillmark, by default ~/.config/quillmark.
std::filesystem::path DefaultUserFolder() {
    if (const char* config = std::getenv("XDG_CONFIG_HOME"); config != nullptr && *config == '/') {
        return std::filesystem::path(config) / "quillmark";
    }
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : ".") / ".config" / "quillmark";
}

}  // namespace qm::platform
