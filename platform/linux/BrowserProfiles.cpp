#include "platform/linux/BrowserProfiles.h"

#include "platform/linux/LinuxProfileFiles.h"

namespace platform::linux {

browsers::UserFolders userFolders(const Environment& env) {
    return {env.home, env.configHome, env.cacheHome};
}

std::vector<BrowserProfile> findBrowserProfiles(const Environment& env) {
    return browsers::findBrowserProfiles(profileFiles(), userFolders(env));
}

bool profileHeld(const BrowserProfile& profile) {
    return browsers::profileHeld(profileFiles(), profile);
}

} // namespace platform::linux
