#pragma once
// The memory monitor docked against a window's right edge: same top, its left edge touching the
// window's right edge (frames included), wherever the window stands and however large the screen.

#include <QWidget>

namespace memory::ui {

/// Moves `monitor` so that it stands flush against the right edge of `window`, same top.
inline void dockBeside(QWidget& monitor, const QWidget& window) {
    monitor.move(window.x() + window.frameGeometry().width(), window.y());
}

} // namespace memory::ui
