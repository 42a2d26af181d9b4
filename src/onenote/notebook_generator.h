// Synthetic notebook folders of a chosen size, for benchmarks and scale tests: every page has a
// title and one outline of paragraphs shaped like OneNote's (authors, times, object IDs, runs of
// formatted text, some bulleted, some tagged), so that reading and writing them costs what real
// pages cost.
#pragma once

#include <filesystem>

namespace qm::onenote {

struct GeneratedSize {
    int notebooks = 1;
    int sections = 1;    // per notebook
    int pages = 1;       // per section
    int paragraphs = 1;  // per page
};

// Writes hierarchy.xml and pages/ into `folder` (created when missing). The same size always
// gives the same files.
void GenerateNotebookFolder(const std::filesystem::path& folder, const GeneratedSize& size);

}  // namespace qm::onenote
