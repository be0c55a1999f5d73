#pragma once
// Where a window first stands: in the middle of the screen, as every window of the program does.

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace widgets {

/// Moves `window` to the middle of the primary screen: left = screen width / 2 - window width / 2,
/// top likewise, each half truncated before the subtraction. Nothing happens without a screen.
inline void centreOnScreen(QWidget& window) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->geometry();
    window.move(area.width() / 2 - window.width() / 2, area.height() / 2 - window.height() / 2);
}

} // namespace widgets
