// Listing real child processes by name is AutoClean's own test; here, the names Wine's programs and
// deleted executables are known by.

#include "platform/linux/LinuxProcesses.h"

#include <gtest/gtest.h>

TEST(Processes, WineProgramsAreKnownByTheirWindowsName) {
    using platform::linux::programNameOf;
    EXPECT_EQ(programNameOf("/usr/lib/wine/wine64-preloader", "C:\\Program Files\\Internet Explorer\\iexplore.exe"),
              "iexplore.exe");
    EXPECT_EQ(programNameOf("/usr/bin/wine", "c:/windows/notepad.exe"), "notepad.exe");
    EXPECT_EQ(programNameOf("/usr/lib/firefox-esr/firefox-esr", "/usr/bin/firefox"), "firefox-esr");
    EXPECT_EQ(programNameOf("/tmp/x/chromium (deleted)", ""), "chromium");
}
