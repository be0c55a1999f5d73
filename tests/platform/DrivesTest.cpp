// Drives from the scratch mount table: only mounts the tests make are drives, and a path belongs to
// the drive its object really lies on, however the path is written.

#include "platform/Platform.h"
#include "platform/linux/MountTable.h"
#include "tests/support/Scratch.h"
#include "tests/support/ScratchMount.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/statvfs.h>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::DriveType;
using testsupport::ScratchDir;

TEST(MountTable, SplitsFieldsAtSingleBlanksAsTheKernelWritesThem) {
    // Optional fields, a mount point with a blank, a tab, a backslash, a carriage return and a
    // vertical tab in its name (only the first three are escaped), an empty source (two blanks in a
    // row), and a device number that is none.
    const std::string text = "22 1 252:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                             "23 22 0:21 / /proc rw,nosuid shared:12 - proc proc rw\n"
                             "40 22 8:17 / /media/my\\040stick rw master:3 shared:9 - vfat /dev/sdb1 rw\n"
                             "42 27 0:39 / /tmp/fz\\040mnt\\011x\\134y\rz\vw rw,relatime - tmpfs src\\040with rw\n"
                             "43 27 0:40 / /tmp/fzempty rw,relatime - tmpfs  rw\n"
                             "44 27 x:y / /bad rw - ext4 /dev/sdz1 rw\n";
    const auto mounts = platform::linux::parseMountInfo(text);
    ASSERT_EQ(mounts.size(), 6u);
    EXPECT_EQ(mounts[2].id, 40u);
    EXPECT_EQ(mounts[2].parent, 22u);
    EXPECT_EQ(mounts[2].mountPoint, "/media/my stick");
    EXPECT_EQ(mounts[2].fsType, "vfat");
    EXPECT_EQ(mounts[2].source, "/dev/sdb1");
    EXPECT_EQ(mounts[2].major, 8u);
    EXPECT_EQ(mounts[2].minor, 17u);
    EXPECT_EQ(mounts[3].mountPoint, "/tmp/fz mnt\tx\\y\rz\vw");
    EXPECT_EQ(mounts[3].source, "src with");
    EXPECT_EQ(mounts[4].source, "");
    EXPECT_EQ(mounts[4].fsType, "tmpfs");
    EXPECT_EQ(mounts[5].mountPoint, "/bad");
    EXPECT_EQ(platform::linux::mountById(mounts, 43)->mountPoint, "/tmp/fzempty");
    EXPECT_EQ(platform::linux::mountById(mounts, 99), nullptr);
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[0]));
    EXPECT_FALSE(platform::linux::isRealFilesystem(mounts[1]));
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[4]));
}

TEST(Drives, TheScratchMountTableIsTheOnlyOneSeen) {
    auto p = platform::createNative();
    auto& drives = p->drives();
    EXPECT_TRUE(drives.roots().empty()); // not even "/"
    EXPECT_EQ(drives.type("/"), DriveType::NoRootDir);
    EXPECT_TRUE(drives.isDirectory("/"));
    EXPECT_FALSE(drives.isDirectory("/no/such/mount"));

    // Free space is the filesystem's own, listed or not.
    platform::DiskSpace space;
    ASSERT_TRUE(drives.space("/", space));
    struct statvfs vfs {};
    ASSERT_EQ(::statvfs("/", &vfs), 0);
    EXPECT_EQ(space.total, static_cast<std::uint64_t>(vfs.f_blocks) * vfs.f_frsize);
    EXPECT_LE(space.freeToCaller, space.totalFree);
    EXPECT_FALSE(drives.space("/no/such/mount", space));
}

TEST(Drives, ARamDiskIsARamDiskHoweverThePathLeadsThere) {
    ScratchDir dir;
    testsupport::ScratchMount ram("-t tmpfs -o size=4m scourmill", dir.path() / "ram");
    if (!ram.mounted())
        GTEST_SKIP() << ram.reason();
    fs::create_directories(dir.path() / "ram/deep/x");
    fs::create_directory_symlink(dir.path() / "ram/deep", dir.path() / "shortcut");
    auto p = platform::createNative();
    auto& drives = p->drives();
    EXPECT_EQ(drives.roots(), std::vector<std::string>{ram.point().string()});

    const fs::path before = fs::current_path();
    fs::current_path(dir.path() / "ram/deep/x");
    for (const std::string& path : {ram.point().string(), (dir.path() / "shortcut/x").string(), std::string("."),
                                   std::string("..")}) {
        EXPECT_EQ(drives.type(path), DriveType::RamDisk) << path;
        EXPECT_EQ(drives.rootOf(path), ram.point().string()) << path;
        platform::DiskSpace space;
        EXPECT_TRUE(drives.space(path, space));
        EXPECT_EQ(space.total, 4u * 1024 * 1024) << path;
    }
    fs::current_path(before);

    // An open folder answers for itself, not for whatever the link it was opened through leads to now.
    const auto folder = p->fileSystem().openFolder((dir.path() / "shortcut/x").string());
    ASSERT_TRUE(folder);
    fs::create_directories(dir.path() / "elsewhere/x");
    fs::remove(dir.path() / "shortcut");
    fs::create_directory_symlink(dir.path() / "elsewhere", dir.path() / "shortcut");
    EXPECT_EQ(drives.type((dir.path() / "shortcut/x").string()), DriveType::NoRootDir);
    EXPECT_EQ(drives.typeOf(*folder), DriveType::RamDisk);
    platform::DiskSpace space;
    EXPECT_TRUE(drives.spaceOf(*folder, space));
    EXPECT_EQ(space.total, 4u * 1024 * 1024);

    // A bind mount of a folder on it, somewhere else, is the same RAM disk.
    testsupport::ScratchMount bound("--bind '" + (dir.path() / "ram/deep").string() + "'", dir.path() / "bound");
    ASSERT_TRUE(bound.mounted()) << bound.reason();
    EXPECT_EQ(drives.type((dir.path() / "bound/x").string()), DriveType::RamDisk);
    EXPECT_EQ(drives.rootOf((dir.path() / "bound/x").string()), bound.point().string());
}
