// The platform seam of the terminal user interface: whether the standard streams are terminals,
// and the interrupt key (Ctrl-C) as a cancel request.
#pragma once

#include <atomic>
#include <string>

namespace qm::ui::platform {

bool StdinIsTerminal();
bool StderrIsTerminal();

// While an InterruptScope lives, the first interrupt (Ctrl-C) only sets `flag` and writes
// `notice` (UTF-8, written as it is) to standard error; a second one ends the process as the
// interrupt normally does. A blocked read of standard input returns with an error on the first
// interrupt, so a prompt does not keep a cancelled run waiting. Scopes do not nest.
class InterruptScope {
public:
    InterruptScope(std::atomic<bool>& flag, std::string notice);
    ~InterruptScope();
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;
};

}  // namespace qm::ui::platform
