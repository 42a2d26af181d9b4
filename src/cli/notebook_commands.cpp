#include "cli/command.h"

namespace qm::cli {

void RegisterNotebookCommands(CLI::App&, CommandContext&) {}

}  // namespace qm::cli
