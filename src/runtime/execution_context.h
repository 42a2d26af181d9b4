// The state of one macro run that every nesting level shares: the macro's variables, the If/Else
// pairing flags, the pages the run loaded and the progress window it reports to.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "core/evaluator.h"

namespace qm {

class MacroLog;
class ProgressUi;

// The OneNote pages a run has loaded, in the order it loaded them, each with its modified flag.
// The OneNote layer implements it; a run without a notebook has none (and so no page to save).
class RunDocuments {
public:
    virtual ~RunDocuments() = default;
    // Finalises the record of every modified page and returns how many there are.
    virtual std::size_t FinalizeModified() = 0;
    // Writes every modified page back to OneNote, in the order of the page table.
    virtual void SaveModified() = 0;
};

struct RunOptions {
    // The progress window is on screen: the interpreter repaints it between statements.
    bool progressInUse = false;
};

struct MacroExecutionContext {
    explicit MacroExecutionContext(const RunOptions& runOptions) : options(&runOptions) {}

    // The macro's variables. A user-defined function runs in a scope of its own.
    MacroScope variables;

    // The most recent If at this point evaluated true / evaluated false (so a following Else runs).
    bool lastIfTaken = false;
    bool elsePending = false;

    const RunOptions* options;
    // The progress scope: the window the run reports to, null when there is none.
    ProgressUi* progress = nullptr;
    // Read before every statement; null when nothing can cancel the run.
    const std::atomic<bool>* cancelFlag = nullptr;
    // The run's page table; null when the run has no notebook.
    RunDocuments* documents = nullptr;
    // Open only when logging is on.
    MacroLog* log = nullptr;

    // Statements begun since the run started (shown by the progress window).
    std::uint64_t statementsRun = 0;
};

}  // namespace qm
