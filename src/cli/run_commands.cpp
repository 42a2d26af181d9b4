#include "cli/command.h"

namespace qm::cli {

void RegisterRunCommands(CLI::App&, CommandContext&) {}

}  // namespace qm::cli
