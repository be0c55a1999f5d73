#include "tests/support/LoopImage.h"

#include "tests/support/Scratch.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace testsupport {

bool runQuietly(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

LoopImage::LoopImage(const fs::path& dir, int mebibytes) : m_image(dir / "disk.img"), m_mount(dir / "mnt") {
    if (::geteuid() != 0) {
        m_reason = "loop mounts need root";
        return;
    }
    fs::create_directories(m_mount);
    if (!runQuietly("truncate -s " + std::to_string(mebibytes) + "M '" + m_image.string() + "'") ||
        !runQuietly("mkfs.ext4 -q -F -m 0 '" + m_image.string() + "'")) {
        m_reason = "mkfs.ext4 failed (is e2fsprogs installed?)";
        return;
    }
    if (!runQuietly("mount -o loop '" + m_image.string() + "' '" + m_mount.string() + "'")) {
        m_reason = "mounting a loop device is not allowed here";
        return;
    }
    m_mounted = true;
}

LoopImage::~LoopImage() {
    unmount();
}

void LoopImage::sync() const {
    runQuietly("sync -f '" + m_mount.string() + "'");
}

bool LoopImage::imageContains(const std::string& needle) const {
    const std::string bytes = readFile(m_image);
    return std::search(bytes.begin(), bytes.end(), needle.begin(), needle.end()) != bytes.end();
}

bool LoopImage::unmount() {
    if (!m_mounted)
        return true;
    m_mounted = !runQuietly("umount '" + m_mount.string() + "'");
    return !m_mounted;
}

} // namespace testsupport
