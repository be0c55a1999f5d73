#pragma once
// One browser disk-cache folder (Chromium's Cache_Data, Firefox's cache2) read entry by entry,
// lazily and reading only the bytes that hold each entry's key, and entries removed from it by the
// file names found. Reading never follows a link: an entry file that is a link is skipped.

#include "browsers/BrowserProfiles.h"
#include "browsers/ProfileFiles.h"
#include "platform/Remover.h"
#include "platform/UrlCache.h"

#include <cstdint>
#include <string>
#include <vector>

namespace browsers {

/// One cache entry as its file tells it.
struct CacheEntryFile {
    std::string name;    ///< the file name in the entries folder ("<hash>_0", or the SHA-1 for cache2)
    std::string address; ///< the source address
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< seconds since 1970-01-01 UTC
};

class CacheFolderReader {
public:
    /// Opens the entries folder of the cache folder `folder` of a browser of `family`.
    CacheFolderReader(ProfileFiles& files, BrowserFamily family, const std::string& folder);

    /// The stamp (ProfileFiles::folderStamp) of the entries folder when it was opened.
    const std::string& stamp() const { return m_stamp; }
    /// The next entry whose key gives an address; false at the end.
    bool next(CacheEntryFile& entry);
    /// The folder holding the entry files.
    const std::string& entriesFolder() const { return m_entries; }

private:
    ProfileFiles& m_files;
    BrowserFamily m_family;
    std::string m_entries;
    std::string m_stamp;
    std::unique_ptr<platform::Folder> m_folder;
    std::vector<std::string> m_names; ///< the entry files' names, read whole when the folder is opened
    std::size_t m_next = 0;
};

/// The entries folder of a cache folder: the folder itself (Chromium) or its "entries" (Firefox).
std::string cacheEntriesFolder(BrowserFamily family, const std::string& folder);

/// Removes the entry `name` (as CacheFolderReader found it) with all its files, after making the
/// cache's index invalid (unless `indexDropped` says an earlier removal did) so that the browser
/// rebuilds it from the entry files rather than trusting it. True when the entry's files are gone.
bool removeCacheEntry(ProfileFiles& files, BrowserFamily family, const std::string& folder, const std::string& name,
                      platform::Remover& remover, bool indexDropped = false);

/// Removes every file of the cache folder `folder` that no listing names (a key that cannot be
/// read, an entry cut before its key was written, a file of no entry), after making the index
/// invalid as removeCacheEntry does; for Firefox also the entries waiting in doomed/ and the
/// trash folders. Entries a listing names stay: they go by their address. Everything goes through
/// `remover`; each item that stays is appended to `problems`. Returns the number of items removed.
std::size_t removeCacheRest(ProfileFiles& files, BrowserFamily family, const std::string& folder,
                            platform::Remover& remover, std::vector<platform::StoreProblem>& problems);
/// Removes the files of the caches kept beside the disk cache in the folder `base` (a profile
/// folder, or its folder below the cache home): Chromium's Code Cache, GPUCache, Dawn caches and
/// Shared Dictionary, Firefox's thumbnails. Appends each file that stays to `problems`.
std::size_t removeSideCaches(ProfileFiles& files, BrowserFamily family, const std::string& base,
                             platform::Remover& remover, std::vector<platform::StoreProblem>& problems);

} // namespace browsers
