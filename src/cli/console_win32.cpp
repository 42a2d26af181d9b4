#include <windows.h>
#include <shellapi.h>

#include "cli/console.h"
#include "core/text.h"

namespace qm::cli::platform {

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    ::SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    LPWSTR* wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (wide == nullptr) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) arguments.push_back(ToUtf8(reinterpret_cast<const char16_t*>(wide[i])));
    ::LocalFree(wide);
    return arguments;
}

}  // namespace qm::cli::platform
