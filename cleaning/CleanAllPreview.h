#pragma once
// What "Cache/History/Cookies/TempFiles" would remove on this machine: the temporary-folder clean
// and the full clean, run over a platform that only records, so the answer comes from the very
// routines that would do the work and nothing can be changed while finding it.

#include "core/ProblemSink.h"
#include "platform/Platform.h"

#include <string>
#include <vector>

namespace cleaning {

struct CleanAllPreview {
    std::string tempFolder;                  ///< the temporary folder the clean would work in
    std::string tempRefusal;                 ///< why it may not be cleaned at all; empty when it may
    std::vector<std::string> tempFiles;      ///< files of the temporary folder that would be deleted
    std::vector<std::string> tempFolders;    ///< its subfolders that would be removed
    std::vector<std::string> cacheEntries;   ///< cache addresses
    std::vector<std::string> typedUrls;      ///< typed-URL registry values, "KEY\NAME" below HKEY_CURRENT_USER
    std::vector<std::string> cookieFiles;    ///< record files of the cookie folder
    std::vector<std::string> historyEntries; ///< addresses in the URL history
};

/// Runs CleanTempFolder, then CleanAll, over a recording platform on top of `platform`. Items the
/// routines would skip (files in use, profiles whose browser runs) go to `problems` when given.
CleanAllPreview PreviewCleanAll(platform::Platform& platform, core::ProblemSink* problems = nullptr);

} // namespace cleaning
