#include "platform/Platform.h"
#include "platform/linux/LinuxProcesses.h"
#include "tests/support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <unistd.h>

TEST(Processes, AChildStartedUnderAKnownNameIsListed) {
    // A name no browser watcher looks for: AutoClean tests may be watching beside this one.
    testsupport::ChildProcess child("listed-program.exe");
    auto p = platform::createNative();
    auto& processes = p->processes();
    const auto ids = processes.ids();
    EXPECT_NE(std::find(ids.begin(), ids.end(), static_cast<long>(child.pid())), ids.end());
    EXPECT_EQ(processes.programName(child.pid()), "listed-program.exe");
    EXPECT_EQ(processes.programName(::getpid()),
              std::filesystem::read_symlink("/proc/self/exe").filename().string());
    const long pid = child.pid();
    child.stop();
    EXPECT_FALSE(processes.programName(pid).has_value());
}

TEST(Processes, WineProgramsAreKnownByTheirWindowsName) {
    using platform::linux::programNameOf;
    EXPECT_EQ(programNameOf("/usr/lib/wine/wine64-preloader", "C:\\Program Files\\Internet Explorer\\iexplore.exe"),
              "iexplore.exe");
    EXPECT_EQ(programNameOf("/usr/bin/wine", "c:/windows/notepad.exe"), "notepad.exe");
    EXPECT_EQ(programNameOf("/usr/lib/firefox-esr/firefox-esr", "/usr/bin/firefox"), "firefox-esr");
    EXPECT_EQ(programNameOf("/tmp/x/chromium (deleted)", ""), "chromium");
}
