#pragma once
// AutoClean: clean the browser's traces each time the browser closes. Its whole state is what the
// main window shows: the toggle button's caption and whether the two watch timers run. These are
// the transitions between those states, kept apart from the widgets so they can be checked alone.
//
//   Off                  "Enable AutoClean (currently OFF)"   TCheck off  TClosed off
//   Waiting for browser  "Disable AutoClean (currently ON)"   TCheck on   TClosed off
//   Waiting for close    "Disable AutoClean (currently ON)"   TCheck off  TClosed on
//
// Switching off while waiting for the close leaves TClosed running on purpose: the clean still
// happens when the browser closes, and TCheck is armed again afterwards although the caption reads
// OFF.

#include <string>

namespace autoclean {

inline const std::string OffCaption = "Enable AutoClean (currently OFF)";
inline const std::string OnCaption = "Disable AutoClean (currently ON)";

struct AutoCleanState {
    std::string caption = OffCaption;
    bool checkEnabled = false;  ///< TCheck: watching for the browser to start
    bool closedEnabled = false; ///< TClosed: watching for the browser to close

    bool operator==(const AutoCleanState&) const = default;
};

/// The toggle (button or tray entry).
AutoCleanState toggled(AutoCleanState state);
/// A TCheck tick: once the browser runs, watch for its close instead.
AutoCleanState afterCheckTick(AutoCleanState state, bool browserRunning);
/// After the clean of a TClosed tick: watch for the browser to start again.
AutoCleanState afterClean(AutoCleanState state);

} // namespace autoclean
