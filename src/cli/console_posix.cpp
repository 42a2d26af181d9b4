#include "cli/console.h"

namespace qm::cli::platform {

// Arguments arrive as the bytes the shell passed, UTF-8 in any current locale.
std::vector<std::string> Utf8Arguments(int argc, char** argv) { return {argv, argv + argc}; }

}  // namespace qm::cli::platform
