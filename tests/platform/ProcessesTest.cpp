#include "platform/Platform.h"
#include "platform/linux/LinuxProcesses.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

namespace fs = std::filesystem;

extern char** environ;

TEST(Processes, AChildStartedUnderAKnownNameIsListed) {
    testsupport::ScratchDir dir;
    const auto exe = dir.path() / "iexplore.exe";
    fs::copy_file("/bin/sleep", exe);
    std::string path = exe.string();
    char arg1[] = "30";
    char* argv[] = {path.data(), arg1, nullptr};
    pid_t child = 0;
    ASSERT_EQ(::posix_spawn(&child, path.c_str(), nullptr, nullptr, argv, environ), 0);

    auto p = platform::createNative();
    auto& processes = p->processes();
    const auto ids = processes.ids();
    EXPECT_NE(std::find(ids.begin(), ids.end(), static_cast<long>(child)), ids.end());
    // exec may not have happened yet right after spawn: ask until it has.
    std::optional<std::string> name;
    for (int i = 0; i < 100 && name != "iexplore.exe"; ++i) {
        name = processes.programName(child);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(name, "iexplore.exe");
    EXPECT_EQ(processes.programName(::getpid()), fs::read_symlink("/proc/self/exe").filename().string());

    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_FALSE(processes.programName(child).has_value());
}

TEST(Processes, WineProgramsAreKnownByTheirWindowsName) {
    using platform::linux::programNameOf;
    EXPECT_EQ(programNameOf("/usr/lib/wine/wine64-preloader", "C:\\Program Files\\Internet Explorer\\iexplore.exe"),
              "iexplore.exe");
    EXPECT_EQ(programNameOf("/usr/bin/wine", "c:/windows/notepad.exe"), "notepad.exe");
    EXPECT_EQ(programNameOf("/usr/lib/firefox-esr/firefox-esr", "/usr/bin/firefox"), "firefox-esr");
    EXPECT_EQ(programNameOf("/tmp/x/chromium (deleted)", ""), "chromium");
}
