#include "runtime/macro_log.h"

#include "core/text.h"
#include "macros/user_folder.h"
#include "runtime/messages.h"

namespace qm {
namespace {

// The stream's own buffer is bypassed: text collects here and goes out at each line break.
constexpr std::size_t kBufferLimit = 128;

}  // namespace

MacroLog::~MacroLog() { Close(); }

bool MacroLog::Open(const std::filesystem::path& path) {
    Close();
    file_.clear();
    file_.open(path, std::ios::binary | std::ios::out | std::ios::trunc);
    open_ = file_.is_open() && file_.good();
    if (!open_) file_.close();
    return open_;
}

void MacroLog::Close() {
    if (!open_) return;
    Flush();
    file_.close();
    open_ = false;
}

void MacroLog::Write(std::u16string_view text) {
    if (!open_ || text.empty()) return;
    pending_ += ToUtf8(text);
    if (text.find(u'\n') != std::u16string_view::npos || pending_.size() >= kBufferLimit) Flush();
}

void MacroLog::Line(std::u16string_view text) {
    if (!open_) return;
    Write(u"\r\n");
    Write(text);
}

void MacroLog::Entry(std::u16string_view statementText) {
    if (!open_) return;
    Write(u"\r\n");
    Write(msg::kLogSeparator);
    Write(u"\r\n");
    Write(statementText);
}

void MacroLog::Flush() {
    if (pending_.empty()) return;
    file_.write(pending_.data(), static_cast<std::streamsize>(pending_.size()));
    file_.flush();
    pending_.clear();
}

std::filesystem::path DefaultMacroLogPath() { return UserFolder() / "macroLog.txt"; }

}  // namespace qm
