#include "autoclean/WatchStep.h"

#include "autoclean/CheckProcess.h"

namespace autoclean {

Tick watchStep(AutoCleanState& state, Timer timer, platform::Processes& processes,
               const std::function<void()>& pumpEvents) {
    const bool running = IsProcessRunning(processes, watchedBrowsers(), pumpEvents);
    if (timer == Timer::Check) {
        state = afterCheckTick(state, running);
        return running ? Tick::BrowserStarted : Tick::Nothing;
    }
    return mustClean(running) ? Tick::CleanDue : Tick::Nothing;
}

} // namespace autoclean
