#pragma once
// Every text of the index.dat manager: the window's captions, its messages and its hover help.
// The window and the command line take them from here so that both say the same thing.

#include "core/HoverHelpText.h"

#include <string>
#include <vector>

namespace indexdat {

inline const std::string WindowCaption = "Tavi Manage Index.dat Files";
inline const std::string DefaultPattern = "index.dat";

/// Shown when an action needs a selected file and there is none.
inline const std::string SelectFileMessage =
    "Please populate then select file in top listbox to display contents in bottom list box";

/// The question asked before a file's activity is overwritten.
std::string confirmWipeText(const std::string& path);

/// The eleven help pop-ups, "hlp" to "hlp10".
const std::vector<core::HelpMenu>& helpMenus();

} // namespace indexdat
