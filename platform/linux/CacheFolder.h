#pragma once
// One browser disk-cache folder (Chromium's Cache_Data, Firefox's cache2) read entry by entry,
// lazily and reading only the bytes that hold each entry's key, and entries removed from it by the
// file names found. Reading never follows a link: an entry file that is a link is skipped.

#include "platform/UrlCache.h"
#include "platform/linux/BrowserProfiles.h"

#include <cstdint>
#include <ctime>
#include <dirent.h>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {

/// One cache entry as its file tells it.
struct CacheEntryFile {
    std::string name;    ///< the file name in the entries folder ("<hash>_0", or the SHA-1 for cache2)
    std::string address; ///< the source address
    std::uint64_t size = 0;
    std::int64_t modified = 0; ///< seconds since 1970-01-01 UTC
};

/// What a folder looked like, to tell later whether entries were added or removed since.
struct FolderStamp {
    dev_t device = 0;
    ino_t inode = 0;
    timespec modified{};
    bool operator==(const FolderStamp& o) const {
        return device == o.device && inode == o.inode && modified.tv_sec == o.modified.tv_sec &&
               modified.tv_nsec == o.modified.tv_nsec;
    }
};

class CacheFolderReader {
public:
    /// Opens the entries folder of the cache folder `folder` of a browser of `family`.
    CacheFolderReader(BrowserFamily family, const std::string& folder);
    ~CacheFolderReader();
    CacheFolderReader(const CacheFolderReader&) = delete;
    CacheFolderReader& operator=(const CacheFolderReader&) = delete;

    /// The stamp of the entries folder when it was opened; empty stamp when it could not be.
    const FolderStamp& stamp() const { return m_stamp; }
    /// The next entry whose key gives an address; false at the end.
    bool next(CacheEntryFile& entry);
    /// The folder holding the entry files.
    const std::string& entriesFolder() const { return m_entries; }

private:
    bool readEntry(const char* name, CacheEntryFile& entry);

    BrowserFamily m_family;
    std::string m_entries;
    DIR* m_dir = nullptr;
    FolderStamp m_stamp;
};

/// The entries folder of a cache folder: the folder itself (Chromium) or its "entries" (Firefox).
std::string cacheEntriesFolder(BrowserFamily family, const std::string& folder);

/// The stamp of a folder now; an empty stamp when it cannot be read.
FolderStamp folderStamp(const std::string& folder);

/// Removes the entry `name` (as CacheFolderReader found it) with all its files, after making the
/// cache's index invalid so that the browser rebuilds it from the entry files rather than trusting
/// it. True when the entry's files are gone.
bool removeCacheEntry(BrowserFamily family, const std::string& folder, const std::string& name, Remover& remover);

/// Removes every file of the cache folder `folder` that no listing names (a key that cannot be
/// read, an entry cut before its key was written, a file of no entry), after making the index
/// invalid as removeCacheEntry does; for Firefox also the entries waiting in doomed/ and the
/// trash folders. Entries a listing names stay: they go by their address. Everything goes through
/// `remover`; each item that stays is appended to `problems`. Returns the number of items removed.
std::size_t removeCacheRest(BrowserFamily family, const std::string& folder, Remover& remover,
                            std::vector<StoreProblem>& problems);
/// Removes the files of the caches kept beside the disk cache in the folder `base` (a profile
/// folder, or its folder below the cache home): Chromium's Code Cache, GPUCache, Dawn caches and
/// Shared Dictionary, Firefox's thumbnails. Appends each file that stays to `problems`.
std::size_t removeSideCaches(BrowserFamily family, const std::string& base, Remover& remover,
                             std::vector<StoreProblem>& problems);

} // namespace platform::linux
