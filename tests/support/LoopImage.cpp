#include "tests/support/LoopImage.h"

#include "tests/support/Scratch.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <fstream>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace testsupport {

bool runQuietly(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

LoopImage::LoopImage(const fs::path& dir, int mebibytes, const std::string& mkfs)
    : m_image(dir / "disk.img"), m_point(dir / "mnt") {
    if (::geteuid() != 0) {
        m_reason = "loop mounts need root";
        return;
    }
    fs::create_directories(dir);
    if (!runQuietly("truncate -s " + std::to_string(mebibytes) + "M '" + m_image.string() + "'") ||
        !runQuietly(mkfs + " '" + m_image.string() + "'")) {
        m_reason = "'" + mkfs + "' failed (is its package installed?)";
        return;
    }
    m_mount = std::make_unique<ScratchMount>("-o loop '" + m_image.string() + "'", m_point);
    if (!m_mount->mounted())
        m_reason = "mounting a loop device is not allowed here";
}

LoopImage::~LoopImage() {
    unmount();
}

void LoopImage::sync() const {
    runQuietly("sync -f '" + m_point.string() + "'");
}

bool LoopImage::imageContains(const std::string& needle) const {
    const std::string bytes = readFile(m_image);
    return std::search(bytes.begin(), bytes.end(), needle.begin(), needle.end()) != bytes.end();
}

bool LoopImage::unmount() {
    return !m_mount || m_mount->unmount();
}

LoopDevice::LoopDevice(const fs::path& file) {
    if (::geteuid() != 0) {
        m_reason = "loop devices need root";
        return;
    }
    if (FILE* out = ::popen(("losetup -f --show '" + file.string() + "' 2>/dev/null").c_str(), "r")) {
        char line[256] = {};
        if (std::fgets(line, sizeof line, out))
            m_device.assign(line, std::strcspn(line, "\n"));
        if (::pclose(out) != 0)
            m_device.clear();
    }
    if (m_device.empty())
        m_reason = "binding a loop device is not allowed here";
}

LoopDevice::~LoopDevice() {
    detach();
}

bool LoopDevice::detach() {
    if (m_device.empty())
        return true;
    const bool ok = runQuietly("losetup -d " + m_device);
    if (ok)
        m_device.clear();
    return ok;
}

} // namespace testsupport
