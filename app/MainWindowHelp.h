#pragma once
// The main window's hover help: ten menus, each the help of one control, line by line. The texts
// are the program's own, odd spacing and spelling included.

#include <vector>

namespace app {

struct HelpLine {
    const char* entry; ///< the menu entry's object name
    const char* text;
};

struct HelpMenu {
    const char* menu;    ///< the menu's object name
    const char* title;   ///< its caption on the (hidden) menu bar
    const char* control; ///< the control it explains
    std::vector<HelpLine> lines;
};

/// The ten help menus, in menu-bar order.
const std::vector<HelpMenu>& mainWindowHelp();

} // namespace app
