#pragma once
// Drives: the roots of the mounted filesystems, their kind and their free space. On Linux a drive
// is the mount point of a real (block-device backed or tmpfs) filesystem.

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

/// The values of GetDriveTypeA.
enum class DriveType : unsigned { Unknown = 0, NoRootDir = 1, Removable = 2, Fixed = 3, Remote = 4, CdRom = 5, RamDisk = 6 };

struct DiskSpace {
    std::uint64_t freeToCaller = 0; ///< bytes the caller may still write
    std::uint64_t total = 0;
    std::uint64_t totalFree = 0;
};

class Drives {
public:
    virtual ~Drives() = default;

    /// The roots of all drives, in the system's order ("C:\\" or "/", "/media/usb", ...).
    virtual std::vector<std::string> roots() = 0;
    /// The drive root holding `path` (the longest mount point that contains it).
    virtual std::string rootOf(const std::string& path) = 0;
    virtual DriveType type(const std::string& root) = 0;
    /// Free and total bytes of the filesystem holding `path`; false on failure.
    virtual bool space(const std::string& path, DiskSpace& out) = 0;
    /// Whether `path` names an existing folder (PathIsDirectoryA); false when no medium is present.
    virtual bool isDirectory(const std::string& path) = 0;
};

} // namespace platform
