#include "app/MainWindowHelp.h"

namespace app {

const std::vector<core::HelpMenu>& mainWindowHelp() {
    // The texts are the program's own, odd spacing and spelling included.
    static const std::vector<core::HelpMenu> menus = {
        {"mainhelp", "mainhelp  ", "GGCommand1",
         {{"mainshowcache", " Cache  is a place where data is stored for"},
          {"mainshowcache2", "quicker access to avoid reads from a slower"},
          {"mainshowcache3", "device such as a disk. This shows whats in cache."}}},
        {"mainhelp2", "mainhelp2", "GGCommand2",
         {{"wipecache", "Wipes the Cache clean of ALL entries"},
          {"wipecache2", "also cleans ram and swap file mem allocations"}}},
        {"mainhelp3", "mainhelp3", "GGCommand3",
         {{"wipecachetemp", "Cleans cache, history, cookies as well as files placed in "},
          {"wipecachetemp2", "temporary directories on hard drive."},
          {"wipecachetemp3", "also cleans ram and swap file mem allocations"}}},
        {"mainhelp4", "mainhelp4", "GGCommand4", {{"manageindex", "The Ultimate control over recorded activity."}}},
        {"mainhelp5", "mainhelp5", "GGCommand8",
         {{"wipefree", "Cleans Hard drive free space above"},
          {"wipefree2", "Dept. of Defense standards utilizing"},
          {"wipefree3", "the Gutmann method's research on magnetic data."}}},
        {"mainhelp6", "mainhelp6", "GGCommand9",
         {{"securefile", "Wipes files and folders above Dept. of Defense"},
          {"securefile2", "standards utilizing the Gutmann method's research"},
          {"securefile3", "on magnetic data"}}},
        {"mainhelp7", "mainhelp7", "GGCommand10",
         {{"autoclean", "When running in your system tray, IE internet"},
          {"autoclean2", "activity will automatically be erased on browzer closing"}}},
        {"mainhelp8", "mainhelp8", "GGCommand11",
         {{"cleanitem", "Will delete recorded activity in programs"},
          {"cleanitem2", "from the \"Please Choose Item to Clean\" list"}}},
        {"mainhelp9", "mainhelp9", "GGCommand12",
         {{"hideme", "Keeps program running in the background"}, {"hideme2", "from your system tray"}}},
        {"mainhelp10", "mainhelp10", "List1",
         {{"mylist", "Cache information is viewed here."}, {"mylist2", "Double Click to open location in browser"}}},
    };
    return menus;
}

} // namespace app
