#include "onenote/sample_notebook.h"

#include <system_error>
#include <vector>

#include "core/format.h"
#include "core/text.h"
#include "macros/user_folder.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder.h"

namespace qm::onenote {

namespace fs = std::filesystem;

namespace {

bool IsNotebookFolder(const fs::path& folder) {
    std::error_code ec;
    return fs::is_regular_file(folder / "hierarchy.xml", ec);
}

std::vector<fs::path> SampleCandidates() {
    std::vector<fs::path> candidates;
    if (const fs::path exe = platform::ExecutablePath(); !exe.empty()) {
        const fs::path dir = exe.parent_path();
        candidates.push_back(dir.parent_path() / "share" / "quillmark" / "notebook");
        candidates.push_back(dir / "notebook");
    }
#ifdef QUILLMARK_SAMPLE_NOTEBOOK_DIR
    candidates.push_back(fs::path(QUILLMARK_SAMPLE_NOTEBOOK_DIR));
#endif
    return candidates;
}

// Copies the sample beside the target first and renames it into place, so that an interrupted
// copy never leaves a half notebook where the working copy belongs.
void CopySample(const fs::path& target) {
    const fs::path sample = BundledSampleNotebook();
    fs::create_directories(target.parent_path());
    fs::path staging = target;
    staging += ".new";
    fs::remove_all(staging);
    fs::copy(sample, staging, fs::copy_options::recursive);
    fs::remove_all(target);
    fs::rename(staging, target);
}

}  // namespace

fs::path BundledSampleNotebook() {
    const std::vector<fs::path> candidates = SampleCandidates();
    std::u16string looked;
    for (const fs::path& candidate : candidates) {
        if (IsNotebookFolder(candidate)) return candidate.lexically_normal();
        if (!looked.empty()) looked += u", ";
        looked += candidate.lexically_normal().u16string();
    }
    throw FolderError(FormatMessage(msg::kSampleNotFound, {looked}));
}

fs::path WorkingNotebook() {
    const fs::path target = UserFolder() / "notebook";
    if (!IsNotebookFolder(target)) CopySample(target);
    return target;
}

fs::path ResetWorkingNotebook() {
    const fs::path target = UserFolder() / "notebook";
    CopySample(target);
    return target;
}

}  // namespace qm::onenote
