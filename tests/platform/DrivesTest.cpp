// Drives from the scratch mount table: only mounts the tests make are drives, a path belongs to
// the drive its object really lies on, however the path is written, and only filesystems of local
// block devices are drives a wipe may fill.

#include "platform/Platform.h"
#include "platform/linux/MountTable.h"
#include "tests/support/Scratch.h"
#include "tests/support/LoopImage.h"
#include "tests/support/ScratchMount.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/statvfs.h>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::DriveType;
using testsupport::ScratchDir;

// Any mount written as the kernel writes it parses back to itself: the mount table's fuzzer checks
// that. These are the lines it cannot make: optional fields, characters the kernel leaves
// unescaped, an empty source and a device number that is none.
TEST(MountTable, SplitsFieldsAtSingleBlanksAsTheKernelWritesThem) {
    const std::string text = "22 1 252:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                             "23 22 0:21 / /proc rw,nosuid master:3 shared:12 - proc proc rw\n"
                             "42 27 0:39 / /tmp/fz\\040mnt\\011x\\134y\rz\vw rw,relatime - tmpfs src\\040with rw\n"
                             "43 27 0:40 / /tmp/fzempty rw,relatime - tmpfs  rw\n"
                             "44 27 x:y / /bad rw - ext4 /dev/sdz1 rw\n";
    const auto mounts = platform::linux::parseMountInfo(text);
    ASSERT_EQ(mounts.size(), 5u);
    EXPECT_EQ(mounts[1].fsType, "proc");
    EXPECT_EQ(mounts[2].mountPoint, "/tmp/fz mnt\tx\\y\rz\vw");
    EXPECT_EQ(mounts[2].source, "src with");
    EXPECT_EQ(mounts[3].source + "|" + mounts[3].fsType, "|tmpfs");
    EXPECT_EQ(mounts[4].mountPoint, "/bad");
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[0]));
    EXPECT_FALSE(platform::linux::isRealFilesystem(mounts[1]));
    EXPECT_TRUE(platform::linux::isRealFilesystem(mounts[3]));
}

TEST(Drives, OnlyLocalBlockDeviceFilesystemsAreDrivesToWipe) {
    // The scratch folder's own mount, described by one line after another in the scratch table:
    // what the kernel says of the mount (its type, device and options) alone decides the kind.
    ScratchDir dir;
    auto p = platform::createNative();
    const auto folder = p->fileSystem().openFolder(dir.str());
    ASSERT_TRUE(folder);
    const std::string id = std::to_string(folder->self().mount);
    struct Case {
        const char* type;
        const char* device; ///< major:minor; 259:6xxxx has no block device behind it in sysfs
        const char* source;
        DriveType kind;
    };
    const Case cases[] = {
        {"ext4", "259:60000", "/dev/nvme9n1p1", DriveType::Fixed},
        {"btrfs", "0:61", "/dev/sdz1", DriveType::Fixed}, // its device numbers are anonymous ones
        {"fuseblk", "259:60000", "/dev/sdz1", DriveType::Fixed},
        {"fuseblk", "0:62", "/dev/sdz1", DriveType::Unknown}, // no block device behind it
        {"vfat", "259:60000", "/dev/sdz1", DriveType::Removable},
        {"tmpfs", "0:64", "tmpfs", DriveType::RamDisk},
        {"nfs4", "0:65", "server:/export", DriveType::Remote},
        {"iso9660", "11:0", "/dev/sr0", DriveType::CdRom},
        {"fuse.rclone", "0:66", "remote:", DriveType::Unknown},
        {"overlay", "0:67", "overlay", DriveType::Unknown}, // no upper layer: nothing can be written
        {"newfs", "259:60000", "/dev/sdz1", DriveType::Unknown},
    };
    for (const Case& c : cases) {
        testsupport::addMountTableLine(id + " 1 " + c.device + " / /mnt/case rw,relatime - " + c.type + " " + c.source +
                                       " rw,lowerdir=/lower");
        EXPECT_EQ(p->drives().typeOf(*folder), c.kind) << c.type << " " << c.device;
        EXPECT_EQ(p->drives().fileSystemOf(*folder), c.type);
        testsupport::removeMountTableLine(id);
    }
}

TEST(Drives, TheScratchMountTableIsTheOnlyOneSeenAndSpaceIsTheFilesystemsOwnWithRootsReserve) {
    auto p = platform::createNative();
    auto& drives = p->drives();
    EXPECT_TRUE(drives.roots().empty()); // not even "/"
    EXPECT_EQ(drives.type("/"), DriveType::NoRootDir);
    platform::DiskSpace space;
    ASSERT_TRUE(drives.space("/", space));
    struct statvfs vfs {};
    ASSERT_EQ(::statvfs("/", &vfs), 0);
    EXPECT_EQ(space.total, static_cast<std::uint64_t>(vfs.f_blocks) * vfs.f_frsize);
    EXPECT_FALSE(drives.space("/no/such/mount", space));

    // Root may fill the blocks the filesystem keeps back for it.
    ScratchDir dir;
    testsupport::LoopImage image(dir.path(), 16, "mkfs.ext4 -q -F -m 10");
    if (!image.mounted())
        GTEST_SKIP() << image.reason();
    const auto folder = p->fileSystem().openFolder(image.mountPoint().string());
    ASSERT_TRUE(folder);
    ASSERT_TRUE(p->drives().spaceOf(*folder, space));
    ASSERT_EQ(::statvfs(image.mountPoint().c_str(), &vfs), 0);
    ASSERT_LT(vfs.f_bavail, vfs.f_bfree) << "the image keeps no blocks back";
    EXPECT_EQ(space.freeToCaller, static_cast<std::uint64_t>(vfs.f_bfree) * vfs.f_frsize); // mounting took root
}

TEST(Drives, ARamDiskIsARamDiskHoweverThePathLeadsThere) {
    ScratchDir dir;
    testsupport::ScratchMount ram("-t tmpfs -o size=4m scourmill", dir.path() / "ram");
    if (!ram.mounted())
        GTEST_SKIP() << ram.reason();
    fs::create_directories(dir.path() / "ram/deep/x");
    for (const char* sub : {"ram/upper", "ram/work", "lower"})
        fs::create_directories(dir.path() / sub);
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

    // An overlay is the drive its upper layer is on.
    testsupport::ScratchMount overlay("-t overlay -o lowerdir=" + (dir.path() / "lower").string() +
                                          ",upperdir=" + (dir.path() / "ram/upper").string() +
                                          ",workdir=" + (dir.path() / "ram/work").string() + " overlay",
                                      dir.path() / "merged");
    if (!overlay.mounted())
        GTEST_SKIP() << overlay.reason();
    const auto merged = p->fileSystem().openFolder(overlay.point().string());
    ASSERT_TRUE(merged);
    EXPECT_EQ(drives.typeOf(*merged), DriveType::RamDisk);
    EXPECT_EQ(drives.fileSystemOf(*merged), "overlay (upper layer on tmpfs)");
}
