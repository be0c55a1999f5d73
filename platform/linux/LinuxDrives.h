#pragma once
// Drives on Linux: the mount points of real filesystems in the mount table. A path belongs to the
// drive its opened object lies on (the mount ID statx reports, looked up in the table): relative
// paths, links on the way and bind mounts all count for where they really lead. A drive is
// fixed or removable only when its filesystem is one that lives on a local block device (an
// overlay counts as its upper layer); removable when its block device says so in sysfs or sits on
// USB, or it holds FAT or exFAT; a CD-ROM when it is an optical drive, remote for network
// filesystems, a RAM disk for tmpfs, and of no known kind otherwise. A path whose mount is not in
// the table lies on no drive.

#include "platform/Drives.h"
#include "platform/linux/MountTable.h"

#include <string>

namespace platform::linux {

class LinuxDrives final : public Drives {
public:
    /// Drives from the mountinfo file `mountInfo`.
    explicit LinuxDrives(std::string mountInfo) : m_mountInfo(std::move(mountInfo)) {}

    std::vector<std::string> roots() override;
    std::string rootOf(const std::string& path) override;
    DriveType type(const std::string& root) override;
    bool space(const std::string& path, DiskSpace& out) override;
    DriveType typeOf(const Folder& folder) override;
    bool spaceOf(const Folder& folder, DiskSpace& out) override;
    bool isDirectory(const std::string& path) override;
    Storage storage(const std::string& path) override;
    std::string fileSystemOf(const Folder& folder) override;

private:
    struct Judgement {
        DriveType type;
        std::string fileSystem;
    };
    /// The kind of the drive the mount `m` makes, and the filesystem that decided it (an overlay's
    /// upper layer, followed at most a few overlays deep).
    static Judgement judge(const std::vector<Mount>& mounts, const Mount& m, int depth);
    Judgement judgeAt(int fd);
    /// The kind of the drive that the descriptor `fd` lies on.
    DriveType typeAt(int fd);
    static bool spaceAt(int fd, DiskSpace& out);

    std::string m_mountInfo;
};

} // namespace platform::linux
