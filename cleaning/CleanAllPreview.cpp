#include "cleaning/CleanAllPreview.h"

#include "cleaning/CURLHistory.h"
#include "cleaning/TempFolderGuard.h"
#include "cleaning/TraceCleaner.h"
#include "proxies/PreviewPlatform.h"

#include <algorithm>
#include <unordered_set>

namespace cleaning {
namespace {

using Kind = platform::Change::Kind;

void addOnce(std::vector<std::string>& list, const std::string& item) {
    if (std::find(list.begin(), list.end(), item) == list.end())
        list.push_back(item);
}

} // namespace

CleanAllPreview PreviewCleanAll(platform::Platform& platform, core::ProblemSink* problems) {
    platform::PreviewPlatform dryRun(platform);
    ListView view;
    CURLHistory history(dryRun);
    TraceCleaner cleaner(dryRun, view, problems);
    cleaner.SetHistory(history);
    cleaner.ReadFolderPaths();

    CleanAllPreview found;
    found.tempFolder = cleaner.Paths().TempPath;
    if (!found.tempFolder.empty())
        found.tempRefusal = TempFolderRefusal(platform, found.tempFolder);
    cleaner.CleanTempFolder();
    const std::size_t tempChanges = dryRun.changes().size();
    // An address two browsers hold is one entry, as the clean counts it.
    std::vector<std::string> addresses;
    std::unordered_set<std::string> seen;
    for (const auto& item : history.NewEnum())
        if (seen.insert(item->URL()).second)
            addresses.push_back(item->URL());
    cleaner.CleanAll();

    const auto& changes = dryRun.changes();
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const auto& c = changes[i];
        const bool temp = i < tempChanges;
        if (c.kind == Kind::RemoveFile)
            addOnce(temp ? found.tempFiles : found.cookieFiles, c.target);
        else if (c.kind == Kind::RemoveDirectory && temp)
            addOnce(found.tempFolders, c.target);
        else if (c.kind == Kind::DeleteCacheEntry)
            found.cacheEntries.push_back(c.target); // one line of the list each, as the clean deletes them
        else if (c.kind == Kind::DeleteValue)
            addOnce(found.typedUrls, c.target + "\\" + c.detail);
        else if (c.kind == Kind::ClearHistory)
            found.historyEntries = addresses;
    }
    return found;
}

} // namespace cleaning
