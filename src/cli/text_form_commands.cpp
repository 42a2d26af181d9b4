#include "cli/command.h"

namespace qm::cli {

void RegisterTextFormCommands(CLI::App&, CommandContext&) {}

}  // namespace qm::cli
