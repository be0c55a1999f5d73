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
    // A TClosed tick: the clean is due once the browser is gone.
    return running ? Tick::Nothing : Tick::CleanDue;
}

} // namespace autoclean
