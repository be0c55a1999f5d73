#pragma once
// The note both secure-deletion windows show, without stopping anything, where overwriting cannot
// reach the data of the drive or folder at hand (a copy-on-write filesystem, a flash device). The
// text is the core's, the same the command line prints.

#include <QLabel>

#include <string>

namespace platform {
class Platform;
}

namespace wipe::ui {

/// A new, hidden note label placed at `place` in `parent`, named "lblOverwriteLimits".
QLabel* overwriteLimitsLabel(QWidget* parent, const QRect& place);
/// Shows the note for `path` in `label`, or hides the label when there is nothing to say.
void showOverwriteLimits(QLabel& label, platform::Platform& platform, const std::string& path);

} // namespace wipe::ui
