// The call handler the command line evaluates with: the built-in catalogue once it is linked in.
#pragma once

#include <memory>

#include "core/evaluator.h"

namespace qm::cli {

std::unique_ptr<CallHandler> MakeCommandLineCalls();

}  // namespace qm::cli
