#pragma once
// The main window's hover help: ten menus, each the help of one control, line by line. The texts
// are the program's own, odd spacing and spelling included.

#include "core/HoverHelpText.h"

#include <vector>

namespace app {

/// The ten help menus, in menu-bar order.
const std::vector<core::HelpMenu>& mainWindowHelp();

} // namespace app
