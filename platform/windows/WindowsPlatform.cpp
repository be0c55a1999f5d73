// The Windows platform. Its backends are not written yet: the core libraries are built for Windows
// so that nothing POSIX creeps into them, and createNative() reports that no platform is available.

#include "platform/Platform.h"

namespace platform {

std::unique_ptr<Platform> createNative() {
    return nullptr;
}

} // namespace platform
