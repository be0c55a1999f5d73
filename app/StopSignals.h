#pragma once
// The signals that end the desktop program from outside: SIGHUP (a logout, the terminal it was
// started from closed), SIGTERM, SIGINT and SIGQUIT. Left to their default action they would kill
// the program in the middle of a free-space wipe and leave its temporary file filling the drive.
// Instead each one ends the program as Exit in the tray menu does: a run in a tool window stops at
// its next check, cleans up, and only then does the event loop end. A signal handler may do next
// to nothing, so it only writes the signal's number into a pipe; the event loop, which a running
// wipe keeps turning, reads the pipe and does the rest.

namespace app {

class TaviMain;

/// Installs the handlers for the life of the process; from then on those signals end the program
/// through `main`'s Exit. Does nothing on a system without these signals.
void exitOnStopSignals(TaviMain& main);

} // namespace app
