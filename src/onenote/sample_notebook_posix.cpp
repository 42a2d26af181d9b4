#include <system_error>

#include "onenote/sample_notebook.h"

namespace qm::onenote::platform {

std::filesystem::path ExecutablePath() {
    std::error_code ec;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::path() : path;
}

}  // namespace qm::onenote::platform
