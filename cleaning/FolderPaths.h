#pragma once
// The folder paths the trace-cleaning routines use, read once at start-up: the "History",
// "Cache" and "Cookies" values of the current user's Shell Folders key, as paths of this machine
// (on Linux inside the Wine prefix), and the temporary folder. Only CookiesPath and TempPath are
// cleaned; the other two are read so that every Shell Folders path is at hand in one place.

#include "platform/Platform.h"

#include <string>

namespace cleaning {

struct FolderPaths {
    std::string HistoryPath;
    std::string CachePath;
    std::string CookiesPath;
    std::string TempPath;
};

/// The Shell Folders key below HKEY_CURRENT_USER.
extern const std::string ShellFoldersKey;

/// Reads HistoryPath, CachePath and CookiesPath (in that order) from the Shell Folders key, then
/// TempPath from the platform. A missing value leaves its path empty.
FolderPaths ReadFolderPaths(platform::Platform& platform);

} // namespace cleaning
