#pragma once
// HKEY_CURRENT_USER on Linux: the Wine prefix's user.reg. The file is read again whenever it
// changed on disk and rewritten whole after each change (a temporary file in the prefix renamed
// over it), but never while a wineserver runs for the prefix: the server keeps the hive in memory
// and would write its own copy back over ours when it exits.

#include "platform/Registry.h"
#include "platform/linux/Environment.h"
#include "winehive/WineHive.h"

#include <map>

namespace platform::linux {

class LinuxRegistry final : public Registry {
public:
    /// The hive of `env.winePrefix`; running servers are looked for in /tmp/.wine-<uid>, where
    /// Wine keeps them whatever TMPDIR says.
    explicit LinuxRegistry(Environment env);
    /// Same, with the folder that holds the servers' folders given (tests use a scratch folder).
    LinuxRegistry(Environment env, std::string serverRoot);

    long openKey(RegKey root, const std::string& subKey, RegKey& result) override;
    long createKey(RegKey root, const std::string& subKey, RegKey& result) override;
    long queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override;
    long setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override;
    long deleteValue(RegKey key, const std::string& name) override;
    long closeKey(RegKey key) override;
    long valueNames(RegKey key, std::vector<std::string>& names) override;

    /// The folder a wineserver for this prefix uses: <serverRoot>/server-<device>-<inode> of the
    /// prefix folder, in hex as Wine names it; empty when the prefix does not exist.
    std::string serverDirectory() const;
    /// Whether a wineserver for this prefix runs now: it holds a write lock on "lock" in its folder.
    bool serverRunning() const;

    /// What identifies one state of the file: a rewrite or an edit changes it.
    struct FileStamp {
        unsigned long long device = 0, inode = 0, size = 0;
        long long seconds = 0, nanos = 0;
        bool operator==(const FileStamp&) const = default;
    };

private:

    std::string hivePath() const { return m_env.winePrefix + "/user.reg"; }
    /// Makes m_hive the file's current content; false when there is no readable hive.
    bool load();
    /// Writes m_hive over the file; a Win32 result.
    long save();
    /// The hive path an open key or the root stands for; false for an unknown handle.
    bool pathOf(RegKey key, std::string& path) const;
    /// The full path of `subKey` below the open key `root`, with the hive loaded; a Win32 result.
    long resolve(RegKey root, const std::string& subKey, std::string& path);
    RegKey newHandle(const std::string& path);
    /// Runs `change` on the hive and saves it, unless a server runs; a Win32 result.
    template <typename Change> long modify(Change change);

    Environment m_env;
    std::string m_serverRoot;
    winehive::WineHive m_hive;
    bool m_loaded = false;
    bool m_refused = false; ///< the hive exists but is no regular file that could be read
    FileStamp m_stamp;
    std::map<RegKey, std::string> m_handles;
    RegKey m_nextHandle = 0x100;
};

} // namespace platform::linux
