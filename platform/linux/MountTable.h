#pragma once
// The mounts of this process, read from /proc/self/mountinfo.

#include <string>
#include <vector>

namespace platform::linux {

struct Mount {
    std::string mountPoint;
    std::string fsType;
    std::string source;
    unsigned major = 0;
    unsigned minor = 0;
};

/// Parses mountinfo text (octal escapes such as \040 decoded), in file order.
std::vector<Mount> parseMountInfo(const std::string& text);
/// The current mounts; empty when /proc is not there.
std::vector<Mount> readMounts();
/// Whether a mount holds user data (a disk, a network share, tmpfs) rather than kernel state.
bool isRealFilesystem(const Mount& mount);

} // namespace platform::linux
