#pragma once
// The program's two pictures: the program icon (window, tray, menu entry) and the one the tray
// shows while AutoClean cleans. Both are drawn once as SVG (app/icons) and rendered to PNG at
// every size a desktop asks for when the program is built (app/CMakeLists.txt); the desktop's
// icon theme gets the same files when the program is installed.

#include <QIcon>

namespace app {

QIcon programIcon();
QIcon cleaningIcon();

} // namespace app
