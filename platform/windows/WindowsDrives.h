#pragma once
// Drives on Windows: the logical drives (GetLogicalDriveStringsW), their kind (GetDriveTypeW), the
// free space (GetDiskFreeSpaceExW) and whether a medium is there (PathIsDirectoryW). A folder a
// volume is mounted on counts as that volume's root.

#include "platform/Drives.h"

namespace platform::windows {

class WindowsDrives final : public Drives {
public:
    std::vector<std::string> roots() override;
    std::string rootOf(const std::string& path) override;
    DriveType type(const std::string& path) override;
    bool space(const std::string& path, DiskSpace& out) override;
    bool isDirectory(const std::string& path) override;
};

} // namespace platform::windows
