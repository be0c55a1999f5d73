#pragma once
// One tick of AutoClean's watch, the same for the main window's two timers and the command line's
// loop: look whether a watched browser runs, move the state on, and say whether the browser has
// just closed so that a clean is due. The caller cleans, then moves the state on with afterClean().

#include "autoclean/AutoCleanState.h"
#include "platform/Processes.h"

#include <functional>

namespace autoclean {

/// The watch timer that ticks.
enum class Timer {
    Check,  ///< TCheck: waiting for the browser to start
    Closed, ///< TClosed: waiting for the browser to close
};

/// What a tick found.
enum class Tick {
    Nothing,        ///< nothing to do
    BrowserStarted, ///< the browser runs: from now on its close is watched
    CleanDue,       ///< the browser is gone: clean now
};

/// A tick of `timer`. `pumpEvents` runs between the processes looked at.
Tick watchStep(AutoCleanState& state, Timer timer, platform::Processes& processes,
               const std::function<void()>& pumpEvents = {});

} // namespace autoclean
