#include <io.h>
#include <stdio.h>
#include <windows.h>

#include "ui/terminal.h"

namespace qm::ui::platform {
namespace {

std::atomic<bool>* g_flag = nullptr;
std::string g_notice;

BOOL WINAPI OnConsoleControl(DWORD type) {
    if (type != CTRL_C_EVENT && type != CTRL_BREAK_EVENT) return FALSE;
    if (g_flag && !g_flag->exchange(true)) {
        DWORD written = 0;
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), g_notice.data(), static_cast<DWORD>(g_notice.size()), &written,
                  nullptr);
        return TRUE;
    }
    return FALSE;  // the second interrupt: the default handler ends the process
}

}  // namespace

bool StdinIsTerminal() { return _isatty(_fileno(stdin)) != 0; }
bool StderrIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

InterruptScope::InterruptScope(std::atomic<bool>& flag, std::string notice) {
    g_flag = &flag;
    g_notice = std::move(notice);
    SetConsoleCtrlHandler(OnConsoleControl, TRUE);
}

InterruptScope::~InterruptScope() {
    SetConsoleCtrlHandler(OnConsoleControl, FALSE);
    g_flag = nullptr;
}

}  // namespace qm::ui::platform
