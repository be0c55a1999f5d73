#include "platform/linux/LinuxDrives.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/MountTable.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace platform::linux {
namespace {

std::string readFirstLine(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

/// The sysfs folder of the whole disk behind a block device number (a partition's parent).
std::string diskFolder(unsigned major, unsigned minor) {
    char resolved[PATH_MAX];
    const std::string link = "/sys/dev/block/" + std::to_string(major) + ":" + std::to_string(minor);
    if (!::realpath(link.c_str(), resolved))
        return {};
    std::string folder = resolved;
    struct stat st {};
    if (::stat((folder + "/partition").c_str(), &st) == 0)
        folder = folder.substr(0, folder.rfind('/'));
    return folder;
}

constexpr std::array<std::string_view, 9> RemoteTypes = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "9p",
                                                         "fuse.sshfs", "ceph", "afs"};

// The filesystems a drive may hold: local block-device filesystems whose free space is space on
// that device. Everything else (network and FUSE filesystems, RAM, virtual machine shares, types
// this list has never heard of) is no drive to fill, whatever it calls itself.
constexpr std::array<std::string_view, 13> FixedTypes = {"ext2", "ext3", "ext4", "xfs", "btrfs", "f2fs", "jfs",
                                                         "reiserfs", "ntfs", "ntfs3", "hfsplus", "zfs", "bcachefs"};
// FAT and exFAT are what cards and sticks carry.
constexpr std::array<std::string_view, 3> RemovableTypes = {"vfat", "msdos", "exfat"};

template <std::size_t N> bool listed(const std::array<std::string_view, N>& types, const std::string& type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

/// The value of option `key` in a mount's comma-separated options; empty when it is not there.
std::string option(const std::string& options, std::string_view key) {
    for (std::size_t start = 0; start <= options.size();) {
        const std::size_t comma = std::min(options.find(',', start), options.size());
        const std::string_view item(options.data() + start, comma - start);
        if (item.size() > key.size() && item.starts_with(key) && item[key.size()] == '=')
            return std::string(item.substr(key.size() + 1));
        start = comma + 1;
    }
    return {};
}

/// The mount the descriptor `fd` lies on, looked up by its mount ID in `mounts`; null when `fd`
/// is not open or its mount is not listed.
const Mount* mountAt(const std::vector<Mount>& mounts, int fd) {
    const auto facts = fd < 0 ? std::nullopt : factsAt(fd, "", false);
    return facts ? mountById(mounts, facts->mount) : nullptr;
}

/// Filesystems whose overwrites go to new blocks, by their statfs magic number.
struct CopyOnWrite {
    unsigned long magic;
    const char* name;
};
constexpr CopyOnWrite CopyOnWriteTypes[] = {
    {0x9123683E, "btrfs"}, {0x2FC12FC1, "zfs"},  {0xCA451A4E, "bcachefs"},
    {0x794C7630, "overlay"}, {0x3434, "nilfs2"}, {0xF2F52010, "f2fs"},
};
constexpr unsigned long XfsMagic = 0x58465342;

/// Whether the XFS filesystem open as `fd` shares blocks between files (reflink). XFS_IOC_FSGEOMETRY
/// and its older form both put the feature flags at byte 92; when neither answers, sharing is
/// assumed, since every XFS made in recent years has it.
bool xfsReflinks(int fd) {
    alignas(8) unsigned char geometry[256] = {};
    constexpr unsigned long Current = (2UL << 30) | (256UL << 16) | ('X' << 8) | 126;
    constexpr unsigned long Older = (2UL << 30) | (112UL << 16) | ('X' << 8) | 124;
    if (::ioctl(fd, Current, geometry) != 0 && ::ioctl(fd, Older, geometry) != 0)
        return true;
    std::uint32_t flags = 0;
    std::memcpy(&flags, geometry + 92, sizeof flags);
    return flags & (1u << 20); // XFS_FSOP_GEOM_FLAGS_REFLINK
}

} // namespace

std::vector<std::string> LinuxDrives::roots() {
    std::vector<std::string> out;
    for (const Mount& m : readMounts(m_mountInfo))
        if (isRealFilesystem(m) && std::find(out.begin(), out.end(), m.mountPoint) == out.end())
            out.push_back(m.mountPoint);
    return out;
}

std::string LinuxDrives::rootOf(const std::string& path) {
    const auto mounts = readMounts(m_mountInfo);
    const Mount* m = mountAt(mounts, openLocation(path).get());
    return m ? m->mountPoint : std::string();
}

DriveType LinuxDrives::type(const std::string& path) {
    return typeAt(openLocation(path).get());
}

DriveType LinuxDrives::typeOf(const Folder& folder) {
    const auto fd = folder.nativeHandle();
    return fd < 0 ? Drives::typeOf(folder) : typeAt(static_cast<int>(fd));
}

LinuxDrives::Judgement LinuxDrives::judge(const std::vector<Mount>& mounts, const Mount& m, int depth) {
    if (m.fsType == "overlay") {
        // What an overlay takes in goes to its upper layer: that layer's filesystem is the drive.
        // Without one the overlay is read-only; an upper layer that cannot be found is refused.
        const std::string upper = option(m.superOptions, "upperdir");
        const UniqueFd where = upper.empty() || depth > 8 ? UniqueFd() : openLocation(upper);
        const Mount* below = mountAt(mounts, where.get());
        if (!below)
            return {DriveType::Unknown, "overlay"};
        Judgement inner = judge(mounts, *below, depth + 1);
        inner.fileSystem = "overlay (upper layer on " + inner.fileSystem + ")";
        return inner;
    }
    if (listed(RemoteTypes, m.fsType))
        return {DriveType::Remote, m.fsType};
    if (m.fsType == "tmpfs" || m.fsType == "ramfs")
        return {DriveType::RamDisk, m.fsType};
    if (m.fsType == "iso9660" || m.fsType == "udf" || m.major == 11)
        return {DriveType::CdRom, m.fsType};
    if (listed(RemovableTypes, m.fsType))
        return {DriveType::Removable, m.fsType};
    // A FUSE filesystem is a drive only when the kernel gave it a block device (ntfs-3g on a
    // partition); a device number of major 0 is no device at all.
    const bool fixedType = listed(FixedTypes, m.fsType) || (m.fsType == "fuseblk" && m.major != 0);
    if (!fixedType)
        return {DriveType::Unknown, m.fsType};
    const std::string disk = diskFolder(m.major, m.minor);
    if (!disk.empty() && (readFirstLine(disk + "/removable") == "1" || disk.find("/usb") != std::string::npos))
        return {DriveType::Removable, m.fsType};
    return {DriveType::Fixed, m.fsType};
}

LinuxDrives::Judgement LinuxDrives::judgeAt(int fd) {
    const auto mounts = readMounts(m_mountInfo);
    const Mount* found = mountAt(mounts, fd);
    if (!found)
        return {DriveType::NoRootDir, {}};
    return judge(mounts, *found, 0);
}

DriveType LinuxDrives::typeAt(int fd) {
    return judgeAt(fd).type;
}

std::string LinuxDrives::fileSystemOf(const Folder& folder) {
    const auto fd = folder.nativeHandle();
    return fd < 0 ? Drives::fileSystemOf(folder) : judgeAt(static_cast<int>(fd)).fileSystem;
}

bool LinuxDrives::space(const std::string& path, DiskSpace& out) {
    const UniqueFd where = openLocation(path);
    return where && spaceAt(where.get(), out);
}

bool LinuxDrives::spaceOf(const Folder& folder, DiskSpace& out) {
    const auto fd = folder.nativeHandle();
    return fd < 0 ? Drives::spaceOf(folder, out) : spaceAt(static_cast<int>(fd), out);
}

bool LinuxDrives::spaceAt(int fd, DiskSpace& out) {
    struct statvfs vfs {};
    if (::fstatvfs(fd, &vfs) != 0)
        return false;
    // Root may write the blocks the filesystem keeps back for it (ext4's 5 %), so for root they
    // are free space too: a wipe run as root reaches what deleted files left there.
    const auto usable = ::geteuid() == 0 ? vfs.f_bfree : vfs.f_bavail;
    out.freeToCaller = static_cast<std::uint64_t>(usable) * vfs.f_frsize;
    out.total = static_cast<std::uint64_t>(vfs.f_blocks) * vfs.f_frsize;
    out.totalFree = static_cast<std::uint64_t>(vfs.f_bfree) * vfs.f_frsize;
    return true;
}

Storage LinuxDrives::storage(const std::string& path) {
    Storage out;
    // The ioctl needs a descriptor that can be read, not a mere location.
    UniqueFd where(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!where)
        where = openLocation(path);
    struct statfs fs {};
    const auto facts = where ? factsAt(where.get(), "", false) : std::nullopt;
    if (!facts || ::fstatfs(where.get(), &fs) != 0)
        return out;
    const auto magic = static_cast<unsigned long>(fs.f_type);
    for (const CopyOnWrite& type : CopyOnWriteTypes)
        if (type.magic == magic) {
            out.fileSystem = type.name;
            out.copyOnWrite = true;
        }
    if (magic == XfsMagic) {
        out.fileSystem = "xfs";
        out.copyOnWrite = xfsReflinks(where.get());
    }
    const auto mounts = readMounts(m_mountInfo);
    if (const Mount* m = mountById(mounts, facts->mount))
        out.fileSystem = m->fsType;
    const std::string disk = diskFolder(::major(facts->device), ::minor(facts->device));
    out.flash = !disk.empty() && (readFirstLine(disk + "/queue/rotational") == "0" ||
                                  readFirstLine(disk + "/removable") == "1" || disk.find("/usb") != std::string::npos);
    return out;
}

bool LinuxDrives::isDirectory(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

} // namespace platform::linux
