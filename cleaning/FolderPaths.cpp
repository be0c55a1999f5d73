#include "cleaning/FolderPaths.h"

#include "cleaning/RegStrings.h"

namespace cleaning {

const std::string ShellFoldersKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

FolderPaths ReadFolderPaths(platform::Platform& platform) {
    const auto read = [&](const char* value) {
        const std::string recorded = GetRegString(platform.registry(), platform::CurrentUserRoot, ShellFoldersKey, value);
        return platform.knownFolders().fromRegistryPath(recorded);
    };
    FolderPaths paths;
    paths.HistoryPath = read("History");
    paths.CachePath = read("Cache");
    paths.CookiesPath = read("Cookies");
    paths.TempPath = platform.knownFolders().tempPath();
    return paths;
}

} // namespace cleaning
