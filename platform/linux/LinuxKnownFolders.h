#pragma once
// Well-known folders on Linux. The registry's folder paths belong to the Wine prefix: "C:\" is the
// prefix's drive_c, other letters its dosdevices entries.

#include "platform/KnownFolders.h"
#include "platform/linux/Environment.h"

namespace platform::linux {

class LinuxKnownFolders final : public KnownFolders {
public:
    explicit LinuxKnownFolders(Environment env) : m_env(std::move(env)) {}

    std::string tempPath() override { return m_env.tempDir; }
    std::string systemDirectory() override;
    std::string fromRegistryPath(const std::string& path) override;
    std::string homePath() override { return m_env.home; }
    std::vector<std::string> homePaths() override;
    std::string usersPath() override;
    std::vector<std::string> systemFolders() override;
    RunAs runAs() override;

private:
    Environment m_env;
};

} // namespace platform::linux
