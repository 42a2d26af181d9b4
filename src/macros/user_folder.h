// The per-user folder that holds the macro list, the settings, the macro log and the working copy
// of the sample notebook. The environment variable QUILLMARK_HOME overrides it on every platform
// (tests always set it, so they never touch a real home).
#pragma once

#include <filesystem>

namespace qm {

// The folder, without creating it.
std::filesystem::path UserFolder();

// The folder, created when missing.
std::filesystem::path EnsureUserFolder();

namespace platform {
// The folder QUILLMARK_HOME names, or an empty path when it is unset or empty. Read as the
// platform's own text (wide on Windows), so that a folder name beyond ASCII survives.
std::filesystem::path HomeOverride();
// The platform's own answer when QUILLMARK_HOME is not set.
std::filesystem::path DefaultUserFolder();
}  // namespace platform

}  // namespace qm
