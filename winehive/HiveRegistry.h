#pragma once
// HKEY_CURRENT_USER kept in a Wine text hive: keys opened by handle, values read, written and
// deleted as the Win32 registry calls do, over the hive's text. The file is read again whenever it
// changed and rewritten whole after each change, but never while a program keeps the hive in
// memory (a wineserver running for the prefix would write its own copy back over ours when it
// exits). The file itself is reached through HiveFile, which the system's backend gives.

#include "platform/Registry.h"
#include "winehive/WineHive.h"

#include <map>
#include <memory>
#include <string>

namespace winehive {

/// The hive's file, and whether Wine holds it.
class HiveFile {
public:
    virtual ~HiveFile() = default;

    enum class Read { Done, Missing, Refused };
    /// What tells this state of the file from any other: which file it is, its size and its last
    /// change. Empty when there is no file.
    virtual std::string stamp() = 0;
    /// Reads the whole file, only as a regular file, and the stamp of what was read. Refused when
    /// something else has the file's name.
    virtual Read read(std::string& text, std::string& stamp) = 0;
    /// Replaces the file whole with `text`, never leaving it half written; false when the old file
    /// stays as it was.
    virtual bool replace(const std::string& text) = 0;
    /// Whether a program keeps the hive in memory now and would write its own copy back.
    virtual bool inUse() = 0;
};

class HiveRegistry : public platform::Registry {
public:
    explicit HiveRegistry(std::unique_ptr<HiveFile> file);

    long openKey(platform::RegKey root, const std::string& subKey, platform::RegKey& result) override;
    long createKey(platform::RegKey root, const std::string& subKey, platform::RegKey& result) override;
    long queryValue(platform::RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override;
    long setValue(platform::RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override;
    long deleteValue(platform::RegKey key, const std::string& name) override;
    long closeKey(platform::RegKey key) override;
    long valueNames(platform::RegKey key, std::vector<std::string>& names) override;

private:
    /// Makes m_hive the file's current content; false when there is no readable hive.
    bool load();
    /// Writes m_hive over the file; a Win32 result.
    long save();
    /// The hive path an open key or the root stands for; false for an unknown handle.
    bool pathOf(platform::RegKey key, std::string& path) const;
    /// The full path of `subKey` below the open key `root`, with the hive loaded; a Win32 result.
    long resolve(platform::RegKey root, const std::string& subKey, std::string& path);
    platform::RegKey newHandle(const std::string& path);
    /// Runs `change` on the hive and saves it, unless the hive is in use; a Win32 result.
    template <typename Change> long modify(Change change);

    std::unique_ptr<HiveFile> m_file;
    WineHive m_hive;
    bool m_loaded = false;
    bool m_refused = false; ///< the hive exists but is no regular file that could be read
    std::string m_stamp;
    std::map<platform::RegKey, std::string> m_handles;
    platform::RegKey m_nextHandle = 0x100;
};

} // namespace winehive
