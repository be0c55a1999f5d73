#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

#ifdef _WIN32
#include <windows.h>
#endif

namespace cli {
namespace {

std::atomic<int> g_signal{0};

#ifdef _WIN32

// Windows has no SIGTERM to send a console program: closing its window, logging off and shutting
// down arrive as console control events, on a thread of their own. The process ends as soon as the
// handler returns from those, so the handler waits a little for the main thread to clean up (the
// free-space wipe removes its temporary file) and exit, which ends the process on its own.
BOOL WINAPI onControl(DWORD event) {
    switch (event) {
    case CTRL_C_EVENT:
    case CTRL_BREAK_EVENT:
        g_signal.store(SIGINT);
        return TRUE;
    case CTRL_CLOSE_EVENT:
    case CTRL_LOGOFF_EVENT:
    case CTRL_SHUTDOWN_EVENT:
        g_signal.store(SIGTERM);
        ::Sleep(4000);
        return TRUE;
    default:
        return FALSE;
    }
}

#else

extern "C" void onSignal(int number) {
    g_signal.store(number);
}

#endif

} // namespace

void watchInterrupts() {
    static bool installed = false;
    if (installed)
        return;
    installed = true;
#ifdef _WIN32
    ::SetConsoleCtrlHandler(onControl, TRUE);
#else
    // A closed terminal or a logout (SIGHUP) and Ctrl-\ (SIGQUIT) end a command as surely as
    // Ctrl-C does, and must leave nothing behind either.
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        std::signal(number, onSignal);
#endif
}

bool interrupted() {
    return g_signal.load() != 0;
}

int interruptSignal() {
    return g_signal.load();
}

} // namespace cli
