#pragma once
// HKEY_CURRENT_USER on Linux: the Wine prefix's user.reg (winehive/HiveRegistry.h), read as a
// regular file only, replaced through a new file renamed over it, and left alone while a
// wineserver runs for the prefix.

#include "platform/linux/Environment.h"
#include "winehive/HiveRegistry.h"

namespace platform::linux {

class LinuxRegistry final : public winehive::HiveRegistry {
public:
    /// The hive of `env.winePrefix`; running servers are looked for in `env.wineServers`, or where
    /// Wine keeps them whatever TMPDIR says, /tmp/.wine-<uid>.
    explicit LinuxRegistry(const Environment& env);
    /// Same, with the folder that holds the servers' folders given (tests use a scratch folder).
    LinuxRegistry(const Environment& env, const std::string& serverRoot);

    /// The folder a wineserver for this prefix uses: <serverRoot>/server-<device>-<inode> of the
    /// prefix folder, in hex as Wine names it; empty when the prefix does not exist.
    std::string serverDirectory() const;
    /// Whether a wineserver for this prefix runs now: it holds a write lock on "lock" in its folder.
    bool serverRunning() const;

private:
    std::string m_prefix;
    std::string m_serverRoot;
};

} // namespace platform::linux
