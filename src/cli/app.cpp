#include "cli/app.h"

#include <iostream>

namespace qm::cli {

int Run(int argc, char** argv, std::ostream& out, std::ostream& err) { return 0; }

int Main(int argc, char** argv) { return Run(argc, argv, std::cout, std::cerr); }

}  // namespace qm::cli
