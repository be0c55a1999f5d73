#include "app/StopSignals.h"

#include "app/TaviMain.h"

#include <QAction>

#ifndef _WIN32
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace app {

#ifdef _WIN32

void exitOnStopSignals(TaviMain&) {}

#else

namespace {

int g_pipe[2] = {-1, -1};

extern "C" void onStopSignal(int number) {
    const int saved = errno;
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], &byte, 1); // full pipe: one is pending
    errno = saved;
}

} // namespace

void exitOnStopSignals(TaviMain& main) {
    if (g_pipe[0] < 0 && ::pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, &main);
    QObject::connect(notifier, &QSocketNotifier::activated, &main, [&main] {
        char bytes[64];
        while (::read(g_pipe[0], bytes, sizeof bytes) > 0) {
        }
        if (auto* exit = main.findChild<QAction*>("Mnu_Exit"))
            exit->trigger();
    });
    struct sigaction action {};
    action.sa_handler = onStopSignal;
    ::sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGHUP, SIGINT, SIGTERM, SIGQUIT})
        ::sigaction(number, &action, nullptr);
}

#endif

} // namespace app
