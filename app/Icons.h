#pragma once
// The program's two tray pictures, drawn at run time: the program icon, and the one shown while
// AutoClean cleans.

#include <QIcon>

namespace app {

QIcon programIcon();
QIcon cleaningIcon();

} // namespace app
