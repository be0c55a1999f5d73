#pragma once
// Drives: the roots of the mounted filesystems, their kind and their free space. On Linux a drive
// is the mount point of a real (block-device backed or tmpfs) filesystem. Every answer about a
// path is about the filesystem the path really leads to (a relative path, a link on the way and a
// bind mount resolved by the system), never about its text.

#include "platform/Folder.h"

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

/// What overwriting in place can reach on a filesystem.
struct Storage {
    std::string fileSystem;   ///< its type name ("ext4", "btrfs"); empty when unknown
    bool copyOnWrite = false; ///< overwrites land in new blocks: btrfs, ZFS, bcachefs, XFS with
                              ///< reflinks, log-structured and overlay filesystems
    bool flash = false;       ///< on a solid-state or flash device (not rotational, or removable)
};

class Drives {
public:
    virtual ~Drives() = default;

    /// The roots of all drives, in the system's order ("C:\\" or "/", "/media/usb", ...).
    virtual std::vector<std::string> roots() = 0;
    /// The root of the drive holding `path`; empty when it lies on no drive the system lists.
    virtual std::string rootOf(const std::string& path) = 0;
    /// The kind of the drive holding `path` (its root or any path on it); NoRootDir when there is
    /// no such path or it lies on no drive.
    virtual DriveType type(const std::string& path) = 0;
    /// Free and total bytes of the filesystem holding `path`; false on failure.
    virtual bool space(const std::string& path, DiskSpace& out) = 0;
    /// The kind of the drive the open folder `folder` lies on, asked of the open folder itself:
    /// whatever its path leads to by now does not change the answer. NoRootDir when it lies on no
    /// drive. A system that cannot ask an open folder asks by the path it was opened by.
    virtual DriveType typeOf(const Folder& folder) { return type(folder.path()); }
    /// Free and total bytes of the filesystem the open folder `folder` lies on, asked of the open
    /// folder itself as typeOf() is; false on failure.
    virtual bool spaceOf(const Folder& folder, DiskSpace& out) { return space(folder.path(), out); }
    /// The name of the filesystem that decides typeOf(`folder`) ("ext4", "fuse.rclone", for an
    /// overlay its upper layer's), for saying why a drive is refused; empty when unknown.
    virtual std::string fileSystemOf(const Folder& folder) { return storage(folder.path()).fileSystem; }
    /// The storage facts of the filesystem `path` leads to; all false when unknown.
    virtual Storage storage(const std::string& path) = 0;
    /// Whether `path` names an existing folder (PathIsDirectoryA); false when no medium is present.
    virtual bool isDirectory(const std::string& path) = 0;
};

} // namespace platform
