#pragma once
// The main window's own cleaning routines: listing the browser's cache into the working list
// (ShowCache), deleting the listed entries ("Wipe Cache"), the full clean of cache, typed URLs,
// the cookie folder's record files and the URL history (CleanAll), the clean of the temporary
// folder (CleanTempFolder), and the overwrite-then-delete of one file (WipeFile) that the last two
// use. Nothing here shows a message: a failing step is skipped and the routine goes on, and each
// skipped item, and each browser profile left alone because its browser runs, goes to the
// optional problem sink.
//
// The temporary and cookie folders are shared with running programs (and, for /tmp, with other
// users), so automatic cleaning touches only the user's own regular files that no process has
// open. Links, sockets, pipes and devices are never touched, nothing is followed through a link,
// and no walk enters another filesystem.

#include "cleaning/CURLHistory.h"
#include "cleaning/FolderPaths.h"
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
    /// Overwrites and deletes the temporary folder's own files, and does the same for the files of
    /// each first-level subfolder before removing it with what lies below. A subfolder that still
    /// holds anything the rules keep (or anything read-only below its first level) stays.
    void CleanTempFolder();
    /// Overwrites `path` eleven times with 0x55 bytes, blocks 0 to round(length / 1024) of 1024
    /// bytes each (so the file may grow by up to a block), each pass reaching the device before
    /// the next, then deletes it. A missing file is left missing; a file with other names (hard
    /// links) is not overwritten, only this name is removed; anything but a plain file is left.
    void WipeFile(const std::string& path);

private:
    /// Why automatic cleaning leaves an entry alone.
    enum class Kept { No, NotAFile, OtherOwner, InUse };
    Kept kept(platform::Folder& folder, const platform::FileInfo& entry);
    class Scheme;
    /// The overwrite of WipeFile, for the entry `name` of an open folder. True when it is gone.
    bool wipeEntry(platform::Folder& folder, const std::string& name);
    /// wipeEntry for an entry of the temporary or cookie folder, when the rules allow.
    void wipeIfAllowed(platform::Folder& folder, const platform::FileInfo& entry, TraceStep step);
    void cleanSubfolder(platform::Folder& parent, const platform::FileInfo& entry);
    /// Walks everything below `dir`. With `remove` false, tells whether all of it may go; with it
    /// true, removes what may and tells whether all of it went.
    bool clearBelow(platform::Folder& dir, bool remove);
    /// With `always` false, an empty list erases nothing.
    void deleteListed(bool always);
    void cleanCookieRecords();
    void skipped(const std::string& item, const std::string& reason);
    std::string join(const std::string& folder, const std::string& name) const;

    platform::Platform& m_platform;
    TraceView& m_view;
    CURLHistory* m_history = nullptr;
    core::ProblemSink* m_problems;
    wipe::Engine m_engine;
    /// Removes the files of the browsers' stores: counted and named by the stores themselves.
    wipe::Engine m_storeFiles;
    FolderPaths m_paths;
    std::vector<std::uint8_t> m_pattern;
};

} // namespace cleaning
