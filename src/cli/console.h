// The platform seam of the command line: its arguments as UTF-8, whatever the system's code page.
#pragma once

#include <string>
#include <vector>

namespace qm::cli::platform {

// The arguments, the program's name first. On Windows they are read wide and the console is set
// to show the UTF-8 the tool writes.
std::vector<std::string> Utf8Arguments(int argc, char** argv);

}  // namespace qm::cli::platform
