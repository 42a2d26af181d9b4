#include "addin/host_log.h"

#include "addin/win32.h"

#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string>
#include <system_error>

#include "addin/messages.h"
#include "core/text.h"
#include "macros/user_folder.h"

namespace qm::addin {

bool InSurrogate() {
    static const bool surrogate = GetModuleHandleW(L"dllhost.exe") != nullptr;
    return surrogate;
}

void HostLog(std::u16string_view line) {
    // The surrogate's watcher logs from its own thread.
    static std::mutex mutex;
    try {
        std::u16string name(msg::kLogFileStem);
        name += InSurrogate() ? msg::kLogSuffixOutproc : msg::kLogSuffixInproc;
        std::error_code ignored;
        const std::filesystem::path folder = UserFolder();
        std::filesystem::create_directories(folder, ignored);

        SYSTEMTIME now;
        GetLocalTime(&now);
        char stamp[64];
        std::snprintf(stamp, sizeof stamp, "%04u-%02u-%02u %02u:%02u:%02u.%03u [%lu] ", now.wYear, now.wMonth,
                      now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds, GetCurrentProcessId());
        const std::string text = stamp + ToUtf8(line) + "\r\n";

        std::lock_guard lock(mutex);
        if (FILE* file = _wfopen((folder / std::filesystem::path(name)).c_str(), L"ab")) {
            std::fwrite(text.data(), 1, text.size(), file);
            std::fclose(file);
        }
    } catch (...) {
        // A log that cannot be written is no reason to fail OneNote's call.
    }
}

}  // namespace qm::addin
