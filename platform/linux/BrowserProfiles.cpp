#include "platform/linux/BrowserProfiles.h"

#include "platform/linux/LinuxProfileFiles.h"

namespace platform::linux {

std::vector<BrowserProfile> findBrowserProfiles(const Environment& env) {
    return browsers::findBrowserProfiles(profileFiles(), {env.home, env.configHome, env.cacheHome});
}

bool profileHeld(const BrowserProfile& profile) {
    return browsers::profileHeld(profileFiles(), profile);
}

} // namespace platform::linux
