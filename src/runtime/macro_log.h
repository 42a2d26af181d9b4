// The macro log: a text file that records, while logging is on, every statement a run executes,
// the evaluations made for it and the run's outcome. One file per run: opening truncates the log
// of the previous run.
//
// Encoding: UTF-8 without a byte-order mark. The other files of the per-user folder are UTF-16,
// but the log is read by people, in editors and on terminals (`quillmark run --log`), where UTF-8
// is what works everywhere; its content is the same text either way. Lines end in "\r\n".
//
// A log that cannot be opened stays closed and every write is ignored: the run goes on without it.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "core/evaluator.h"

namespace qm {

class MacroLog final : public LogSink {
public:
    MacroLog() = default;
    MacroLog(const MacroLog&) = delete;
    MacroLog& operator=(const MacroLog&) = delete;
    ~MacroLog() override;

    // Opens the file for writing, truncating it; false when it cannot be opened.
    bool Open(const std::filesystem::path& path);
    void Close();
    bool IsOpen() const noexcept { return open_; }

    // Raw text, as the evaluator writes it. Pending text goes to the file after each line break.
    void Write(std::u16string_view text) override;
    // "\r\n" followed by the text: a result line of the interpreter or the driver.
    void Line(std::u16string_view text);
    // A statement entry: "\r\n", the separator of 72 hyphens, "\r\n", the statement's text.
    void Entry(std::u16string_view statementText);

private:
    void Flush();

    std::ofstream file_;
    std::string pending_;
    bool open_ = false;
};

// "macroLog.txt" in the per-user folder.
std::filesystem::path DefaultMacroLogPath();

}  // namespace qm
