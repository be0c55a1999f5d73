#pragma once
// The mounts of this process, in the kernel's mountinfo format. The source is a file name taken
// from the environment (Environment::mountInfo): /proc/self/mountinfo normally, a scratch table in
// tests, so that no test ever sees, or touches, the machine's real drives. Mounts are found by the
// mount ID the kernel reports for an open file (statx), never by comparing path texts.

#include <cstdint>
#include <string>
#include <vector>

namespace platform::linux {

struct Mount {
    std::uint64_t id = 0;     ///< the mount ID, as statx reports it for files reached through this mount
    std::uint64_t parent = 0; ///< the mount ID of the mount this one sits on
    std::string root;         ///< the folder of the filesystem that is mounted here ("/" for all of it)
    std::string mountPoint;
    std::string fsType;
    std::string source;
    std::string superOptions; ///< the filesystem's own options ("rw,memory" for a cgroup hierarchy)
    unsigned major = 0;
    unsigned minor = 0;
};

/// Parses mountinfo text (octal escapes such as \040 decoded), in file order.
std::vector<Mount> parseMountInfo(const std::string& text);
/// The mounts listed in the mountinfo file `source`; empty when it cannot be read or is no
/// regular file (a FIFO, socket or device is never read, so the call never blocks).
std::vector<Mount> readMounts(const std::string& source);
/// The mount with ID `id` in `mounts`, or null.
const Mount* mountById(const std::vector<Mount>& mounts, std::uint64_t id);
/// Whether a mount holds user data (a disk, a network share, tmpfs) rather than kernel state.
bool isRealFilesystem(const Mount& mount);

} // namespace platform::linux
