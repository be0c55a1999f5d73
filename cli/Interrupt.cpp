#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

namespace cli {
namespace {

std::atomic<int> g_signal{0};

extern "C" void onSignal(int number) {
    g_signal.store(number);
}

} // namespace

void watchInterrupts() {
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
}

bool interrupted() {
    return g_signal.load() != 0;
}

int interruptSignal() {
    return g_signal.load();
}

} // namespace cli
