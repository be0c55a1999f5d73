// Loop-mounted images are a Linux facility: on Windows the image is never mounted, and the tests
// that need one skip with the reason.

#include "tests/support/LoopImage.h"

#include <cstdlib>

namespace testsupport {

bool runQuietly(const std::string& command) {
    return std::system((command + " >NUL 2>&1").c_str()) == 0;
}

LoopImage::LoopImage(const std::filesystem::path& dir, int) : m_image(dir / "disk.img"), m_mount(dir / "mnt") {
    m_reason = "loop-mounted ext4 images are a Linux facility";
}

LoopImage::~LoopImage() = default;

void LoopImage::sync() const {}

bool LoopImage::imageContains(const std::string&) const {
    return false;
}

bool LoopImage::unmount() {
    return true;
}

} // namespace testsupport
