// The quillmark command-line tool: subcommands over the same core the add-in uses.
#pragma once

#include <iosfwd>

namespace qm::cli {

// Runs the tool with the process's arguments; returns the exit code (0 done, 1 error, 2 usage).
int Main(int argc, char** argv);

// The same with explicit streams, for tests.
int Run(int argc, char** argv, std::ostream& out, std::ostream& err);

}  // namespace qm::cli
