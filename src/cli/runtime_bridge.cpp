#include "cli/runtime_bridge.h"

namespace qm::cli {

// Until the built-in library is linked, no call handler: every call reports the unknown-function
// message.
std::unique_ptr<CallHandler> MakeCommandLineCalls() { return nullptr; }

}  // namespace qm::cli
