#pragma once
// Hover help as the windows that have it define it: a help toggle whose caption names what its next
// click does, and one pop-up menu per control whose entries are the lines of that control's help.
// The texts live with each window's other texts; showing them is controls/hoverhelp's job.

#include <string>
#include <vector>

namespace core {

/// The help toggle's captions: help is on while it reads HelpOff.
inline const std::string HelpOn = "HELP ON";
inline const std::string HelpOff = "HELP OFF";
/// The caption after a click: "HELP ON" and "HELP OFF" swap; any other caption stays.
std::string toggledHelpCaption(const std::string& caption);

/// One entry of a help pop-up: its name and its line of text.
struct HelpLine {
    std::string entry;
    std::string text;
};

/// One help pop-up: the menu's name, its caption on the (hidden) menu bar ("" for the name), the
/// control whose pointer entry pops it up ("" for none) and its lines.
struct HelpMenu {
    std::string menu;
    std::string title;
    std::string control;
    std::vector<HelpLine> lines;
};

} // namespace core
