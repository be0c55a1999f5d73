#pragma once
// The hourglass for the length of a long action, restored however the action ends.

#include <QGuiApplication>

namespace wipe::ui {

class BusyCursor {
public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

} // namespace wipe::ui
