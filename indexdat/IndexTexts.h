#pragma once
// Every text of the index.dat manager: the window's captions, its messages and its hover help.
// The window and the command line take them from here so that both say the same thing.

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

/// The help toggle's captions: it names what the next click does, so help is on while it reads
/// HelpOff.
inline const std::string HelpOn = "HELP ON";
inline const std::string HelpOff = "HELP OFF";
/// The caption after a click: "HELP ON" and "HELP OFF" swap; any other caption stays.
std::string toggledHelpCaption(const std::string& caption);

/// One hover-help pop-up: a menu whose items are the lines of a control's help.
struct HelpItem {
    std::string name;
    std::string caption;
};
struct HelpMenu {
    std::string name;    ///< "hlp1"
    std::string control; ///< the control whose pointer entry pops it up; empty for none
    std::vector<HelpItem> items;
};

/// The eleven help pop-ups, "hlp" to "hlp10".
const std::vector<HelpMenu>& helpMenus();
/// The pop-up for `control` ("Dir1", "GGCommand3"), or null when it has none.
const HelpMenu* helpFor(const std::string& control);

} // namespace indexdat
