#include "platform/Platform.h"
#include "platform/linux/MountTable.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sys/mount.h>
#include <sys/statvfs.h>

using platform::DriveType;
using testsupport::ScratchDir;

TEST(MountTable, ParsesMountInfoWithEscapesAndOptionalFields) {
    const std::string text =
        "22 1 252:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
        "23 22 0:21 / /proc rw,nosuid shared:12 - proc proc rw\n"
        "40 22 8:17 / /media/my\\040stick rw master:3 shared:9 - vfat /dev/sdb1 rw\n"
        "41 22 0:45 / /tmp rw - tmpfs tmpfs rw\n";
    const auto mounts = platform::linux::parseMountInfo(text);
    ASSERT_EQ(mounts.size(), 4u);
    EXPECT_EQ(mounts[2].mountPoint, "/media/my stick");
    EXPECT_EQ(mounts[2].fsType, "vfat");
    EXPECT_EQ(mounts[2].source, "/dev/sdb1");
    EXPECT_EQ(mounts[2].major, 8u);
    EXPECT_EQ(mounts[2].minor, 17u);
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[0]));
    EXPECT_FALSE(platform::linux::isRealFilesystem(mounts[1]));
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[3]));
}

TEST(Drives, RootIsADriveWithTheFreeSpaceStatvfsReports) {
    auto p = platform::createNative();
    auto& drives = p->drives();
    const auto roots = drives.roots();
    EXPECT_NE(std::find(roots.begin(), roots.end(), "/"), roots.end());
    EXPECT_EQ(std::find(roots.begin(), roots.end(), "/proc"), roots.end());
    EXPECT_NE(drives.type("/"), DriveType::NoRootDir);
    EXPECT_EQ(drives.type("/no/such/mount"), DriveType::NoRootDir);
    EXPECT_TRUE(drives.isDirectory("/"));
    EXPECT_FALSE(drives.isDirectory("/no/such/mount"));

    platform::DiskSpace space;
    ASSERT_TRUE(drives.space("/", space));
    struct statvfs vfs {};
    ASSERT_EQ(::statvfs("/", &vfs), 0);
    EXPECT_EQ(space.total, static_cast<std::uint64_t>(vfs.f_blocks) * vfs.f_frsize);
    EXPECT_LE(space.freeToCaller, space.totalFree);
    EXPECT_FALSE(drives.space("/no/such/mount", space));
}

TEST(Drives, AMountedRamDiskIsItsOwnDrive) {
    ScratchDir dir;
    const std::string point = (dir.path() / "ram").string();
    std::filesystem::create_directory(point);
    if (::mount("scourmill", point.c_str(), "tmpfs", 0, "size=4m") != 0)
        GTEST_SKIP() << "cannot mount a tmpfs here (needs root and mount permission)";
    auto p = platform::createNative();
    auto& drives = p->drives();
    EXPECT_EQ(drives.type(point), DriveType::RamDisk);
    EXPECT_EQ(drives.rootOf(point + "/some/file"), point);
    platform::DiskSpace space;
    EXPECT_TRUE(drives.space(point, space));
    EXPECT_EQ(space.total, 4u * 1024 * 1024);
    EXPECT_EQ(space.freeToCaller, space.total);
    const auto roots = drives.roots();
    EXPECT_NE(std::find(roots.begin(), roots.end(), point), roots.end());
    ::umount(point.c_str());
}
