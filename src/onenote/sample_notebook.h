// The sample notebook that comes with Quillmark, and the per-user working copy the command-line
// tool runs against, so that runs change the copy and never the files that came with the tool.
#pragma once

#include <filesystem>

namespace qm::onenote {

// The sample notebook folder. Looked for beside the executable first (an installed tool has it in
// <prefix>/share/quillmark/notebook, an unpacked one in <folder of the tool>/notebook), then in
// the source tree the tool was built from (runs from a build tree). Throws FolderError naming the
// places it looked in when there is none.
std::filesystem::path BundledSampleNotebook();

// The working copy in the per-user folder ("notebook" in UserFolder()), copied from the sample on
// first use; an existing copy is used as it is.
std::filesystem::path WorkingNotebook();

// Makes the working copy a fresh copy of the sample again; returns its folder.
std::filesystem::path ResetWorkingNotebook();

namespace platform {
// The running executable's own path; empty when the platform cannot tell.
std::filesystem::path ExecutablePath();
}  // namespace platform

}  // namespace qm::onenote
