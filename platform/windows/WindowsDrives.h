#pragma once
// Drives on Windows: the logical drives (GetLogicalDriveStringsW), their kind (GetDriveTypeW), the
// free space (GetDiskFreeSpaceExW), the filesystem and device behind them, and whether a medium is
// there (PathIsDirectoryW). A path belongs to the volume its opened object lies on: the system's
// own name for that object (GetFinalPathNameByHandleW) decides, after every link, junction and
// mount point on the way, never the path's text; an open folder is asked the same way through its
// handle. A folder a volume is mounted on counts as that volume's root. The drive table is the
// system's; under Wine that is the prefix's dosdevices folder, which tests make their own.

#include "platform/Drives.h"

namespace platform::windows {

class WindowsDrives final : public Drives {
public:
    std::vector<std::string> roots() override;
    std::string rootOf(const std::string& path) override;
    DriveType type(const std::string& path) override;
    bool space(const std::string& path, DiskSpace& out) override;
    DriveType typeOf(const Folder& folder) override;
    bool spaceOf(const Folder& folder, DiskSpace& out) override;
    Storage storage(const std::string& path) override;
    bool isDirectory(const std::string& path) override;
};

} // namespace platform::windows
