// Exceptions that end or cut short a macro run without being errors. They deliberately do not
// derive from std::exception, so that no handler meant for failures swallows them on the way to
// the run driver.
#pragma once

#include <cstdint>

namespace qm {

namespace Macro {

// Thrown by ExitMacro: the run ends here; the driver saves the modified pages when saveChanges is
// true and discards them otherwise.
class ExitException {
public:
    explicit ExitException(bool saveChanges) noexcept : saveChanges_(saveChanges) {}
    bool saveChanges() const noexcept { return saveChanges_; }

private:
    bool saveChanges_;
};

}  // namespace Macro

// The user cancelled the run (the dialog's Cancel, the progress window's Cancel). The driver ends
// the run silently: no error box, no page written.
class RunCancelled {
public:
    static constexpr std::uint32_t kCode = 0x80004004u;  // E_ABORT
    std::uint32_t code() const noexcept { return kCode; }
};

}  // namespace qm
