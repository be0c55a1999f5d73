#pragma once
// Well-known folders: the temporary folder, the system folder, the folders of the system that no
// clean may take, and the translation of the folder paths the registry records (C:\...) into
// paths of this machine; and under whose rights the program runs, which decides whose files are
// "the user's" (FileInfo::ownedByUser).

#include <string>
#include <vector>

namespace platform {

/// Under whose rights the program runs.
enum class RunAs {
    User,                 ///< an ordinary user
    Administrator,        ///< the system's full rights (root, an elevated administrator), for nobody else
    AdministratorForUser, ///< root through sudo: the user who ran sudo is the one whose files are "the user's"
};

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
    /// Every home folder the program works for: the user's, and, run as root through sudo, also
    /// the home of the user who ran sudo. No clean may take one of them, or a folder above one, as
    /// its temporary folder.
    virtual std::vector<std::string> homePaths() { return {homePath()}; }
    /// The folder that holds the users' profiles ("C:\Documents and Settings" or the Wine
    /// prefix's drive_c/users); empty when there is none.
    virtual std::string usersPath() = 0;
    /// The folders of the system itself, which no clean may take as its temporary folder: on
    /// Linux /, /usr, /etc, /var and the other top-level system folders, on Windows the drive's
    /// root, the Windows folder and the program folders. The caller opens them to compare.
    virtual std::vector<std::string> systemFolders() = 0;
    /// Under whose rights the program runs.
    virtual RunAs runAs() = 0;
};

} // namespace platform
