#include "indexdat/IndexTexts.h"

namespace indexdat {

std::string confirmWipeText(const std::string& path) {
    return "TaviWipe " + path + " ?";
}

const std::vector<core::HelpMenu>& helpMenus() {
    // The spelling of these captions, and the blank closing "listall", are the window's documented
    // texts: tests and screenshots compare against them letter for letter.
    static const std::vector<core::HelpMenu> menus = {
        {"hlp", "", "", {{"mydrive", "Choose drive to access folders"}}},
        {"hlp1", "", "Dir1", {{"mydir", "Double click to choose folder to search in"}}},
        {"hlp2", "", "List1",
         {{"mylist1", "Lists all locations in chosen folder of file name"},
          {"mylist12", "typed in field \"type file to find\""}}},
        {"hlp3", "", "List2",
         {{"mylist2", "Shows activity in chosen file above"}, {"mylist3", "Double click to open location"}}},
        {"hlp4", "", "RichTextBox1", {{"mybinary", "Alows intimate viewing of recorded data in file."}}},
        {"hlp5", "", "GGCommand6",
         {{"listall", "Shows all activity in every occurence of every "}, {"listall2", "file of specified name"}}},
        {"hlp6", "", "GGCommand1", {{"showselected", "Lists every occurence of typed file in top screen below"}}},
        {"hlp7", "", "GGCommand2", {{"reportinetact", "Shows all internet activity in middle screen"}}},
        {"hlp8", "", "GGCommand3", {{"mybinrpt", "Intimate view of chosen file in bottom screen"}}},
        {"hlp9", "", "GGCommand4", {{"mydel", "Delete recorded activity from chosen file in top screen"}}},
        {"hlp10", "", "GGCommand5", {{"mydelall", "Wipe all internet activity from every found file."}}},
    };
    return menus;
}

} // namespace indexdat
