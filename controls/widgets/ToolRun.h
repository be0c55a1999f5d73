#pragma once
// Long operations of the tool windows run inside the window's own event handler, letting pending
// events run as they go. Two things follow, and both are handled here once for every such window:
//
// - The program can be told to end while a run is on the stack (Exit in the tray menu, the main
//   window closed). Quitting the event loop does nothing for a run that is still inside a handler,
//   so the main window asks each tool window that implements StoppableWindow to stop: the run
//   notices at its next check, cleans up (a temporary file removed, the file at hand finished off)
//   and returns, and only then can the program end.
// - No exception may leave an event handler: Qt cannot carry one through its event loop. guarded()
//   ends a handler on any failure without a message box, so the window stays usable; the failure
//   is noted on stderr.

#include <QtGlobal>

#include <exception>

namespace widgets {

/// A tool window whose long operation can be asked to stop from outside.
class StoppableWindow {
public:
    virtual ~StoppableWindow() = default;

    /// Whether a long operation is running in this window now.
    virtual bool running() const = 0;
    /// Asks a running operation to end at its next check, without asking the user anything, and
    /// lets the window be closed. Does nothing harmful when nothing runs.
    virtual void requestStop() = 0;
};

/// Runs `handler` so that no exception leaves it; a failure ends it and is noted on stderr only.
template <class F>
void guarded(F&& handler) noexcept {
    try {
        handler();
    } catch (const std::exception& e) {
        qWarning("a window's handler ended on an error: %s", e.what());
    } catch (...) {
        qWarning("a window's handler ended on an unknown error");
    }
}

} // namespace widgets
