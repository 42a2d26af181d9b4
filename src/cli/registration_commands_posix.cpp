// OneNote add-ins exist only on Windows: elsewhere there is nothing to register.
#include "cli/command.h"

namespace qm::cli {

void RegisterRegistrationCommands(CLI::App&, CommandContext&) {}

}  // namespace qm::cli
