// The module's share of COM's bookkeeping: the process-wide count of live objects (every class
// object and every add-in object counts one while it lives, and each LockServer lock counts one),
// changed only atomically. When the count falls to zero inside a dllhost.exe surrogate, a watcher
// thread ends the surrogate once the count has stayed at zero through one of its 30-second steps.
#pragma once

namespace qm::addin {

// Which class an add-in object was made through.
enum class AddinKind { InProc, OutProc };

void ObjectCreated() noexcept;
void ObjectReleased() noexcept;

}  // namespace qm::addin
