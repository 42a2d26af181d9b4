#include "cli/runtime_bridge.h"

#include "runtime/dispatch.h"

namespace qm::cli {
namespace {

// The built-in catalogue with default services: no notebook and no dialog boxes (those
// functions fail with their macro error), dates in the user's locale.
class CommandLineCalls final : public CallHandler {
public:
    MacroValue Call(const M2::Call& call, std::span<Argument> args) override { return calls_.Call(call, args); }

private:
    RuntimeServices services_;
    BuiltinCallHandler calls_{services_};
};

}  // namespace

std::unique_ptr<CallHandler> MakeCommandLineCalls() { return std::make_unique<CommandLineCalls>(); }

}  // namespace qm::cli
