#pragma once
// Well-known folders: the temporary folder, the system folder, and the translation of the folder
// paths the registry records (C:\...) into paths of this machine.

#include <string>

namespace platform {

class KnownFolders {
public:
    virtual ~KnownFolders() = default;

    /// The user's temporary folder, without a trailing separator.
    virtual std::string tempPath() = 0;
    /// The system folder (GetSystemDirectoryA; on Linux the Wine prefix's system32).
    virtual std::string systemDirectory() = 0;
    /// A folder path as the registry records it, as a path of this machine: on Windows unchanged,
    /// on Linux "C:\x\y" becomes "<prefix>/drive_c/x/y". Empty stays empty.
    virtual std::string fromRegistryPath(const std::string& path) = 0;
    /// The user's home folder.
    virtual std::string homePath() = 0;
    /// The folder that holds the users' profiles ("C:\Documents and Settings" or the Wine
    /// prefix's drive_c/users); empty when there is none.
    virtual std::string usersPath() = 0;
};

} // namespace platform
