#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "ui/terminal.h"

namespace qm::ui::platform {
namespace {

// What the handler reaches: set before it is installed, cleared after it is removed.
std::atomic<bool>* g_flag = nullptr;
std::string g_notice;
struct sigaction g_previous;

void OnInterrupt(int signal) {
    const int savedErrno = errno;
    if (g_flag && !g_flag->exchange(true)) {
        if (!g_notice.empty()) {
            [[maybe_unused]] ssize_t written = write(STDERR_FILENO, g_notice.data(), g_notice.size());
        }
        errno = savedErrno;
        return;
    }
    // The second interrupt: the default action ends the process.
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigemptyset(&standard.sa_mask);
    sigaction(signal, &standard, nullptr);
    raise(signal);
    errno = savedErrno;
}

}  // namespace

bool StdinIsTerminal() { return isatty(STDIN_FILENO) == 1; }
bool StderrIsTerminal() { return isatty(STDERR_FILENO) == 1; }

InterruptScope::InterruptScope(std::atomic<bool>& flag, std::string notice) {
    g_flag = &flag;
    g_notice = std::move(notice);
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: a read waiting for the user fails with EINTR
    sigaction(SIGINT, &action, &g_previous);
}

InterruptScope::~InterruptScope() {
    sigaction(SIGINT, &g_previous, nullptr);
    g_flag = nullptr;
}

}  // namespace qm::ui::platform
