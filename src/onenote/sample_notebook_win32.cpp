#include <windows.h>

#include <string>

#include "onenote/sample_notebook.h"

namespace qm::onenote::platform {

std::filesystem::path ExecutablePath() {
    std::u16string buffer(MAX_PATH, u'\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameW(nullptr, reinterpret_cast<wchar_t*>(buffer.data()),
                                                  static_cast<DWORD>(buffer.size()));
        if (length == 0) return {};
        if (length < buffer.size()) {
            buffer.resize(length);
            return std::filesystem::path(buffer);
        }
        buffer.resize(buffer.size() * 2);
    }
}

}  // namespace qm::onenote::platform
