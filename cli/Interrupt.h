#pragma once
// Ctrl-C, SIGTERM, SIGHUP and SIGQUIT (on Windows: Ctrl-C, Ctrl-Break and closing the console) as a
// request to stop: long commands read the flag at the points where the desktop program reads its
// stop controls, clean up, and end.

namespace cli {

/// Installs the SIGINT, SIGTERM, SIGHUP and SIGQUIT handlers, or the console control handler (once).
void watchInterrupts();
/// Whether one of those signals has arrived since watchInterrupts().
bool interrupted();
/// The number of the signal that arrived (on Windows SIGINT for Ctrl-C, SIGTERM for the others), 0
/// when none.
int interruptSignal();

} // namespace cli
