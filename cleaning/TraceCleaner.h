#pragma once
// The main window's own cleaning routines: listing the browser's cache into the working list
// (ShowCache), deleting the listed entries ("Wipe Cache"), the full clean of cache, typed URLs,
// the cookie folder's record files and the URL history (CleanAll), the clean of the temporary
// folder (CleanTempFolder), and the overwrite-then-delete of one file (WipeFile) that the last two
// use. Nothing here shows a message: a failing step is skipped and the routine goes on, and each
// skipped item, and each browser profile left alone because its browser runs, goes to the
// optional problem sink. The files of the temporary and cookie folders go by the rules of
// TempFolderClean, which also does the overwrite.

#include "cleaning/CURLHistory.h"
#include "cleaning/FolderPaths.h"
#include "cleaning/TempFolderClean.h"
#include "cleaning/TraceView.h"
#include "core/ProblemSink.h"
#include "platform/Folder.h"
#include "platform/Platform.h"
#include "wipe/Engine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cleaning {

/// Tells `problems` (when given) about each browser profile of `stores` that was left alone
/// because its browser runs; `what` names the part left ("cache", "history").
void ReportStoresInUse(core::ProblemSink* problems, const std::vector<std::string>& stores, const std::string& what);
/// Tells `problems` (when given) about each file of a store that could not be read or cleaned.
void ReportStoreProblems(core::ProblemSink* problems, const std::vector<platform::StoreProblem>& stores);

class TraceCleaner {
public:
    /// Works through `platform`, with `view` as the working list; both must outlive the cleaner.
    /// `problems` may be null. The folder paths start empty (nothing to clean) until
    /// ReadFolderPaths or SetPaths, and the history step waits for SetHistory: start-up lists the
    /// cache before the history collection exists.
    TraceCleaner(platform::Platform& platform, TraceView& view, core::ProblemSink* problems = nullptr,
                 core::VerdictSink* verdicts = nullptr);
    // The temp clean works through this cleaner's own engine.
    TraceCleaner(const TraceCleaner&) = delete;
    TraceCleaner& operator=(const TraceCleaner&) = delete;

    /// The URL history collection the full clean clears; it must outlive the cleaner.
    void SetHistory(CURLHistory& history) { m_history = &history; }

    /// Reads the Shell Folders paths and the temporary folder (start-up).
    void ReadFolderPaths();
    void SetPaths(FolderPaths paths) { m_paths = std::move(paths); }
    const FolderPaths& Paths() const { return m_paths; }

    /// Empties the list, then adds the source address of every cache entry the enumeration gives,
    /// in its order, through a MemoryBlock as the entry buffer. An enumeration error ends the
    /// listing with the entries found so far.
    void ShowCache();
    /// Deletes the cache entry of each listed address, first to last, then empties the list, and
    /// then every cache file the listing could not name (see UrlCache::deleteUnlisted). With an
    /// empty list nothing is erased. An address is counted done only when its entry went.
    void DeleteListedCacheEntries();
    /// The full clean: lists and deletes every cache entry and every cache file (see
    /// UrlCache::deleteUnlisted), cleans the typed-URL list, deletes the
    /// files named "index.dat" in the cookie folder (overwriting any whose deletion fails), then
    /// clears the URL history.
    void CleanAll();
    /// The temporary-folder clean (TempFolderClean::Clean) of the folder read at start-up.
    void CleanTempFolder() { m_temp.Clean(m_paths.TempPath); }
    /// TempFolderClean::WipeFile.
    void WipeFile(const std::string& path) { m_temp.WipeFile(path); }

private:
    /// With `always` false, an empty list erases nothing.
    void deleteListed(bool always);
    void cleanCookieRecords();
    void skipped(const std::string& item, const std::string& reason);

    platform::Platform& m_platform;
    TraceView& m_view;
    CURLHistory* m_history = nullptr;
    core::ProblemSink* m_problems;
    wipe::Engine m_engine;
    /// Removes the files of the browsers' stores: counted and named by the stores themselves.
    wipe::Engine m_storeFiles;
    TempFolderClean m_temp;
    FolderPaths m_paths;
};

} // namespace cleaning
