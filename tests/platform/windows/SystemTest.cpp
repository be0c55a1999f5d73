// Memory figures, processes and drives as the system itself reports them.

#include "platform/Platform.h"
#include "tests/support/Process.h"
#include "tests/support/Scratch.h"
#include "tests/support/Wine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <filesystem>

TEST(WindowsMemoryStatus, FiguresAreGlobalMemoryStatusExFieldForField) {
    auto p = platform::createNative();
    platform::MemoryStatusRecord r;
    ASSERT_TRUE(p->memoryStatus().query(r));
    MEMORYSTATUSEX m{};
    m.dwLength = sizeof m;
    ASSERT_TRUE(::GlobalMemoryStatusEx(&m));
    EXPECT_EQ(r.dwLength, 64u);
    EXPECT_EQ(r.ullTotalPhys, m.ullTotalPhys);
    EXPECT_EQ(r.ullTotalPageFile, m.ullTotalPageFile);
    EXPECT_EQ(r.ullTotalVirtual, m.ullTotalVirtual);
    // Available memory moves between two reads; it stays within a few percent.
    EXPECT_NEAR(static_cast<double>(r.ullAvailPhys), static_cast<double>(m.ullAvailPhys), 0.05 * m.ullTotalPhys);
}

TEST(WindowsProcesses, AStartedProgramIsListedByItsFileName) {
    // Not a watched browser name: other test programs run alongside in the same Wine session.
    testsupport::ChildProcess child("scourmill-probe.exe");
    ASSERT_GT(child.pid(), 0);
    auto p = platform::createNative();
    auto& processes = p->processes();
    const auto ids = processes.ids();
    EXPECT_NE(std::find(ids.begin(), ids.end(), static_cast<long>(child.pid())), ids.end());
    EXPECT_EQ(processes.programName(child.pid()), "scourmill-probe.exe");
    const long pid = child.pid();
    child.stop();
    // The system may take a moment to let go of an ended process.
    bool gone = false;
    for (int i = 0; i < 200 && !gone; ++i, ::Sleep(5))
        gone = !processes.programName(pid).has_value();
    EXPECT_TRUE(gone);
}

TEST(WindowsDrives, APathBelongsToTheDriveItReallyLeadsTo) {
    // A link on the way to another drive: the answer is about that drive, whatever the text says.
    testsupport::ScratchDir dir;
    const std::string link = (dir.path() / "to-system").string();
    ASSERT_TRUE(testsupport::makeFolderLink(link, "C:\\windows"));
    auto p = platform::createNative();
    auto& drives = p->drives();
    const auto roots = drives.roots();
    ASSERT_NE(std::find(roots.begin(), roots.end(), "C:\\"), roots.end());
    EXPECT_EQ(drives.type("Q:\\"), platform::DriveType::NoRootDir);
    EXPECT_EQ(drives.rootOf("C:\\no such folder"), "");
    EXPECT_FALSE(drives.storage("C:\\").fileSystem.empty());
    const std::string scratchRoot = drives.rootOf(dir.str());
    ASSERT_FALSE(scratchRoot.empty());
    EXPECT_EQ(drives.rootOf(link + "\\system32"), "C:\\");
    // An open folder is asked through its handle, with the same answer as its real path.
    const auto folder = p->fileSystem().openFolder(link + "\\system32");
    ASSERT_TRUE(folder);
    EXPECT_EQ(drives.typeOf(*folder), platform::DriveType::Fixed);
    platform::DiskSpace viaFolder, viaPath;
    ASSERT_TRUE(drives.spaceOf(*folder, viaFolder));
    ASSERT_TRUE(drives.space("C:\\", viaPath));
    EXPECT_EQ(viaFolder.total, viaPath.total);
    EXPECT_LE(viaPath.freeToCaller, viaPath.totalFree);
    if (scratchRoot != "C:\\") {
        EXPECT_NE(drives.rootOf(dir.str() + "\\.\\..\\" + dir.path().filename().string()), "C:\\");
    }
    // A relative path is the current folder's.
    wchar_t current[MAX_PATH];
    ::GetCurrentDirectoryW(MAX_PATH, current);
    ASSERT_TRUE(::SetCurrentDirectoryW(dir.path().c_str()));
    EXPECT_EQ(drives.rootOf("to-system\\system32"), "C:\\");
    EXPECT_EQ(drives.rootOf("."), scratchRoot);
    ::SetCurrentDirectoryW(current);
}

TEST(WindowsShell, ProgramsAreExecutables) {
    auto p = platform::createNative();
    EXPECT_EQ(p->shell().executableName("tavipop"), "tavipop.exe");
    EXPECT_FALSE(p->shell().startProgram("..\\escape.exe"));
}
