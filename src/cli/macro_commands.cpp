#include "cli/command.h"

namespace qm::cli {

void RegisterMacroCommands(CLI::App&, CommandContext&) {}

}  // namespace qm::cli
