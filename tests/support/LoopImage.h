#pragma once
// A small ext4 filesystem in an image file, loop-mounted for the test's lifetime, so that tests can
// prove that data is gone from the disk: plant a secret, run the code, unmount, and search the
// image's raw bytes. The mount is listed in the scratch mount table, so the platform sees it as a
// drive. Needs root and a kernel that allows loop mounts; where that is not so the image reports
// why, and the test skips with that reason.

#include "tests/support/ScratchMount.h"

#include <filesystem>
#include <memory>
#include <string>

namespace testsupport {

class LoopImage {
public:
    /// Makes an image of `mebibytes` MiB in `dir` with `mkfs` (ext4 without blocks reserved for
    /// root unless told otherwise; the command is given the image's path last) and mounts it.
    LoopImage(const std::filesystem::path& dir, int mebibytes, const std::string& mkfs = "mkfs.ext4 -q -F -m 0");
    ~LoopImage();
    LoopImage(const LoopImage&) = delete;
    LoopImage& operator=(const LoopImage&) = delete;

    bool mounted() const { return m_mount && m_mount->mounted(); }
    /// Why the image could not be mounted.
    const std::string& reason() const { return m_reason; }
    const std::filesystem::path& mountPoint() const { return m_point; }
    /// The image file the loop device reads and writes.
    const std::filesystem::path& image() const { return m_image; }

    /// Flushes everything written to the filesystem down to the image file.
    void sync() const;
    /// Whether the raw image holds `needle` right now (call sync() first).
    bool imageContains(const std::string& needle) const;
    /// Unmounts; true when that worked.
    bool unmount();

private:
    std::filesystem::path m_image;
    std::filesystem::path m_point;
    std::unique_ptr<ScratchMount> m_mount;
    std::string m_reason;
};

/// A loop device bound to a file (losetup) and not mounted, for the test's lifetime. Needs root;
/// where binding is not allowed the device reports why.
class LoopDevice {
public:
    explicit LoopDevice(const std::filesystem::path& file);
    ~LoopDevice();
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    bool attached() const { return !m_device.empty(); }
    const std::string& reason() const { return m_reason; }
    /// Releases the device; true when that worked.
    bool detach();

private:
    std::string m_device; ///< /dev/loopN
    std::string m_reason;
};

/// Runs `command` through the shell; true when it exits with 0.
bool runQuietly(const std::string& command);

} // namespace testsupport
