#pragma once
// The browser's URL cache, with the calling conventions of the WinINet cache enumeration: the caller
// asks how many bytes the next entry needs, hands over a buffer of that size, and the entry is
// written into it as one record followed by the texts the record points to. Entries are deleted
// one by one by their source address. On Linux the cache is the disk cache of every browser
// profile found, and a profile whose browser is running is left alone.

#include "platform/Remover.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

/// A FILETIME: 100-nanosecond intervals since 1601-01-01 UTC, in two 32-bit halves.
struct FileTime {
    std::uint32_t dwLowDateTime = 0;
    std::uint32_t dwHighDateTime = 0;
};

/// One cache entry as the enumeration writes it into the caller's buffer: the layout of
/// INTERNET_CACHE_ENTRY_INFOA. The texts it points to lie in the same buffer, after the record.
struct UrlCacheEntryInfo {
    std::uint32_t dwStructSize = 0;
    char* lpszSourceUrlName = nullptr;
    char* lpszLocalFileName = nullptr;
    std::uint32_t CacheEntryType = 0;
    std::uint32_t dwUseCount = 0;
    std::uint32_t dwHitRate = 0;
    std::uint32_t dwSizeLow = 0;
    std::uint32_t dwSizeHigh = 0;
    FileTime LastModifiedTime;
    FileTime ExpireTime;
    FileTime LastAccessTime;
    FileTime LastSyncTime;
    char* lpHeaderInfo = nullptr;
    std::uint32_t dwHeaderInfoSize = 0;
    char* lpszFileExtension = nullptr;
    std::uint32_t dwExemptDelta = 0;
};

/// A file of a store that could not be read or cleaned (whole), and why.
struct StoreProblem {
    std::string file;
    std::string reason;
};

/// An open enumeration of the cache; 0 is none.
using UrlCacheEnum = std::uintptr_t;

class UrlCache {
public:
    virtual ~UrlCache() = default;

    /// FindFirstUrlCacheEntryA without a search pattern. With `buffer` null or `size` below what the
    /// first entry needs: returns 0 and sets `size` to the bytes needed (0 when the cache is empty).
    /// Otherwise writes the first entry into `buffer`, sets `size` to the bytes used and returns a
    /// new enumeration, which findClose() ends.
    virtual UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) = 0;
    /// FindNextUrlCacheEntryA: the next entry of `enumeration` on the same terms. False when there is
    /// none (`size` 0) or when `buffer` is null or too small (`size` = the bytes needed; the entry
    /// stays the next one).
    virtual bool findNext(UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) = 0;
    /// FindCloseUrlCache.
    virtual void findClose(UrlCacheEnum enumeration) = 0;
    /// DeleteUrlCacheEntryA: deletes the entry whose source address is `url`, with all its files;
    /// where the cache is plain files, `remover` removes them. False when there is none or it
    /// cannot be deleted.
    virtual bool deleteEntry(const std::string& url, Remover& remover) = 0;
    /// Deletes what deleting entry by entry cannot reach: every file of the cache folders that no
    /// listing names (an unreadable key, an entry cut short, one waiting for deletion), and the
    /// caches kept beside them (compiled scripts, GPU shaders, thumbnails), through `remover`.
    /// Returns the number of items removed (a folder of a side cache counts once); each that stays
    /// is named by storeProblems(). Nothing where the cache has no such files.
    virtual std::size_t deleteUnlisted(Remover& /*remover*/) { return 0; }
    /// Closes every enumeration and lets go of every file the cache holds open, so that a step
    /// after the listing finds them free; the next call opens what it needs again.
    virtual void release() {}
    /// The stores (browser profile folders) the last call left alone because their browser holds
    /// them; always empty where the cache has no such notion.
    virtual std::vector<std::string> storesInUse() const { return {}; }
    /// The files the last listing or deletion could not read or clean, with the reasons.
    virtual std::vector<StoreProblem> storeProblems() const { return {}; }
};

} // namespace platform
