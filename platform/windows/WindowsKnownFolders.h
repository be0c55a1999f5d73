#pragma once
// Well-known folders on Windows: the temporary folder (TMP, else TEMP, else GetTempPathW), the
// system folder (GetSystemDirectoryW), the user's profile (USERPROFILE) and the folder that
// holds the profiles, and the system's own folders (the system drive's root, the Windows and
// program folders). All are read once, when the platform is built. Registry paths are already
// paths of this machine.

#include "platform/Environment.h"
#include "platform/KnownFolders.h"

namespace platform::windows {

class WindowsKnownFolders final : public KnownFolders {
public:
    explicit WindowsKnownFolders(const Environment& env);

    std::string tempPath() override { return m_temp; }
    std::string systemDirectory() override { return m_system; }
    std::string fromRegistryPath(const std::string& path) override { return path; }
    std::string homePath() override { return m_home; }
    std::string usersPath() override { return m_users; }
    std::vector<std::string> systemFolders() override { return m_systemFolders; }
    RunAs runAs() override;

private:
    std::string m_temp;
    std::string m_system;
    std::string m_home;
    std::string m_users;
    std::vector<std::string> m_systemFolders;
};

} // namespace platform::windows
