// The add-in host's diagnostic log in the per-user folder: "Quillmark_Addin_inproc.log" when the
// add-in lives in OneNote's process, "Quillmark_Addin_outproc.log" in a dllhost.exe surrogate.
// Each line is appended as UTF-8 with the local time and the process id in front, the file being
// opened for that line alone. Logging never fails its caller.
#pragma once

#include <string_view>

namespace qm::addin {

void HostLog(std::u16string_view line);

// Whether this process is a dllhost.exe surrogate (a module of that name is loaded).
bool InSurrogate();

}  // namespace qm::addin
