#pragma once
// Drives on Linux: the mount points of real filesystems. A drive is removable when its block device
// says so in sysfs or sits on USB, a CD-ROM when it is an optical drive, remote for network
// filesystems and a RAM disk for tmpfs.

#include "platform/Drives.h"

namespace platform::linux {

class LinuxDrives final : public Drives {
public:
    std::vector<std::string> roots() override;
    std::string rootOf(const std::string& path) override;
    DriveType type(const std::string& root) override;
    bool space(const std::string& path, DiskSpace& out) override;
    bool isDirectory(const std::string& path) override;
};

} // namespace platform::linux
