#pragma once
// `scourmill --screenshot DIR`: every window laid out and saved as DIR/<WindowName>.png, for the
// README and for looking at the windows on a machine without a display.

#include <QString>

class QWidget;

namespace app {

class WindowSet;

/// Saves `mainWindow` and every tool window of `windows` into `folder`; returns the number of files
/// that could not be written.
int saveScreenshots(QWidget& mainWindow, WindowSet& windows, const QString& folder);

} // namespace app
