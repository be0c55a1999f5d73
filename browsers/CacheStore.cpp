#include "browsers/CacheStore.h"

#include "browsers/CacheFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <unordered_map>

namespace browsers {
namespace {

using platform::FileTime;
using platform::Remover;
using platform::UrlCacheEntryInfo;
using platform::UrlCacheEnum;

constexpr std::uint32_t kNormalCacheEntry = 0x1;
// 100-nanosecond intervals between 1601-01-01 and 1970-01-01.
constexpr std::uint64_t kUnixEpochAsFileTime = 116444736000000000ULL;

FileTime fileTimeOf(std::int64_t unixSeconds) {
    const std::uint64_t t = unixSeconds > 0 ? kUnixEpochAsFileTime + std::uint64_t(unixSeconds) * 10000000ULL : 0;
    return FileTime{static_cast<std::uint32_t>(t), static_cast<std::uint32_t>(t >> 32)};
}

struct Located {
    std::size_t cache;
    std::string name;
};

} // namespace

/// The caches of one discovery of the profiles, and what has been read of them.
struct CacheStore::Catalogue {
    struct Cache {
        BrowserFamily family;
        std::size_t profile;
        std::string folder;
        bool complete = false; ///< every entry of the folder is in `byAddress`
        std::string stamp;     ///< of its entries folder when it was last read completely
        bool indexDropped = false; ///< a deletion made its index invalid: the next need not again
    };
    std::vector<BrowserProfile> profiles;
    std::vector<Cache> caches;          ///< of the profiles not held, in enumeration order
    std::vector<std::string> held;      ///< profile folders left alone
    /// Where each address read so far lies; complete only after indexed().
    std::unordered_map<std::string, std::vector<Located>> byAddress;
    /// Entries read by a listing and not yet in `byAddress`: a listing only notes what it read,
    /// the lookup by address is built when a deletion first needs it.
    std::vector<std::pair<std::size_t, CacheEntryFile>> unindexed;

    void remember(std::size_t cache, CacheEntryFile entry) { unindexed.emplace_back(cache, std::move(entry)); }

    std::unordered_map<std::string, std::vector<Located>>& indexed() {
        for (auto& [cache, entry] : unindexed)
            byAddress[std::move(entry.address)].push_back(Located{cache, std::move(entry.name)});
        unindexed.clear();
        return byAddress;
    }

    /// Reads cache `index` whole into `byAddress`, replacing what was known of it.
    void reread(ProfileFiles& files, std::size_t index) {
        indexed();
        for (auto it = byAddress.begin(); it != byAddress.end();) {
            std::erase_if(it->second, [&](const Located& l) { return l.cache == index; });
            it = it->second.empty() ? byAddress.erase(it) : std::next(it);
        }
        Cache& cache = caches[index];
        CacheFolderReader reader(files, cache.family, cache.folder);
        CacheEntryFile entry;
        while (reader.next(entry))
            remember(index, std::move(entry));
        cache.stamp = reader.stamp();
        cache.complete = true;
    }
};

/// One enumeration: the caches in order, the open folder, and the entry to be handed out next.
class CacheStore::Enumeration {
public:
    Enumeration(ProfileFiles& files, std::shared_ptr<Catalogue> catalogue) : m_files(files), m_catalogue(std::move(catalogue)) {}

    /// The entry to hand out next, read now if need be; null at the end.
    const CacheEntryFile* peek() {
        while (!m_pending) {
            if (!m_reader) {
                if (m_next >= m_catalogue->caches.size())
                    return nullptr;
                m_current = m_next++;
                const auto& cache = m_catalogue->caches[m_current];
                m_reader = std::make_unique<CacheFolderReader>(m_files, cache.family, cache.folder);
            }
            CacheEntryFile entry;
            if (m_reader->next(entry)) {
                m_pending = std::move(entry);
            } else {
                finishFolder();
            }
        }
        return &*m_pending;
    }

    std::uint32_t neededSize() const {
        return static_cast<std::uint32_t>(sizeof(UrlCacheEntryInfo) + m_pending->address.size() + 1 + localName().size() + 1);
    }

    /// Writes the pending entry into `buffer` (at least neededSize() bytes) and moves on.
    void write(void* buffer) {
        auto* base = static_cast<char*>(buffer);
        char* url = base + sizeof(UrlCacheEntryInfo);
        std::memcpy(url, m_pending->address.c_str(), m_pending->address.size() + 1);
        char* local = url + m_pending->address.size() + 1;
        const std::string path = localName();
        std::memcpy(local, path.c_str(), path.size() + 1);

        UrlCacheEntryInfo info;
        info.dwStructSize = sizeof(UrlCacheEntryInfo);
        info.lpszSourceUrlName = url;
        info.lpszLocalFileName = local;
        info.CacheEntryType = kNormalCacheEntry;
        info.dwSizeLow = static_cast<std::uint32_t>(m_pending->size);
        info.dwSizeHigh = static_cast<std::uint32_t>(m_pending->size >> 32);
        info.LastModifiedTime = fileTimeOf(m_pending->modified);
        info.LastAccessTime = info.LastModifiedTime;
        info.LastSyncTime = info.LastModifiedTime;
        std::memcpy(base, &info, sizeof info);
        m_catalogue->remember(m_current, std::move(*m_pending));
        m_pending.reset();
    }

private:
    std::string localName() const { return m_reader->entriesFolder() + "/" + m_pending->name; }

    void finishFolder() {
        // Only a folder that did not change while it was read is known whole.
        auto& cache = m_catalogue->caches[m_current];
        if (!cache.complete && m_reader->stamp() == m_files.folderStamp(m_reader->entriesFolder())) {
            cache.complete = true;
            cache.stamp = m_reader->stamp();
        }
        m_reader.reset();
    }

    ProfileFiles& m_files;
    std::shared_ptr<Catalogue> m_catalogue;
    std::size_t m_next = 0;
    std::size_t m_current = 0;
    std::unique_ptr<CacheFolderReader> m_reader;
    std::optional<CacheEntryFile> m_pending;
};

CacheStore::CacheStore(ProfileFiles& files, UserFolders folders) : m_files(files), m_folders(std::move(folders)) {}

CacheStore::~CacheStore() = default;

std::shared_ptr<CacheStore::Catalogue> CacheStore::discover() {
    auto catalogue = std::make_shared<Catalogue>();
    catalogue->profiles = findBrowserProfiles(m_files, m_folders);
    for (std::size_t p = 0; p < catalogue->profiles.size(); ++p) {
        const BrowserProfile& profile = catalogue->profiles[p];
        if (profile.caches.empty())
            continue;
        if (profileHeld(m_files, profile)) {
            catalogue->held.push_back(profile.folder);
            continue;
        }
        for (const std::string& folder : profile.caches)
            catalogue->caches.push_back(Catalogue::Cache{profile.family, p, folder, false, {}});
    }
    return catalogue;
}

UrlCacheEnum CacheStore::findFirst(void* buffer, std::uint32_t& size) {
    if (!m_probe) {
        m_catalogue = discover();
        m_inUse = m_catalogue->held;
        m_problems.clear();
        m_probe = std::make_unique<Enumeration>(m_files, m_catalogue);
    }
    if (!m_probe->peek()) {
        m_probe.reset();
        size = 0;
        return 0;
    }
    const std::uint32_t needed = m_probe->neededSize();
    if (!buffer || size < needed) {
        size = needed;
        return 0;
    }
    m_probe->write(buffer);
    size = needed;
    const UrlCacheEnum handle = ++m_lastHandle;
    m_open[handle] = std::move(m_probe);
    return handle;
}

bool CacheStore::findNext(UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) {
    const auto it = m_open.find(enumeration);
    if (it == m_open.end() || !it->second->peek()) {
        size = 0;
        return false;
    }
    const std::uint32_t needed = it->second->neededSize();
    if (!buffer || size < needed) {
        size = needed;
        return false;
    }
    it->second->write(buffer);
    size = needed;
    return true;
}

void CacheStore::findClose(UrlCacheEnum enumeration) {
    m_open.erase(enumeration);
}

bool CacheStore::deleteEntry(const std::string& url, Remover& remover) {
    if (!m_catalogue)
        m_catalogue = discover();
    Catalogue& catalogue = *m_catalogue;
    m_inUse = catalogue.held;

    auto found = catalogue.indexed().find(url);
    if (found == catalogue.byAddress.end()) {
        // Not among the entries read so far: read the folders not read whole, or changed since.
        for (std::size_t i = 0; i < catalogue.caches.size(); ++i) {
            const auto& cache = catalogue.caches[i];
            if (!cache.complete || cache.stamp != m_files.folderStamp(cacheEntriesFolder(cache.family, cache.folder)))
                catalogue.reread(m_files, i);
        }
        found = catalogue.indexed().find(url);
        if (found == catalogue.byAddress.end())
            return false;
    }

    bool deleted = true;
    std::vector<Located> kept;
    for (const Located& location : found->second) {
        auto& cache = catalogue.caches[location.cache];
        const BrowserProfile& profile = catalogue.profiles[cache.profile];
        if (profileHeld(m_files, profile)) {
            if (std::find(m_inUse.begin(), m_inUse.end(), profile.folder) == m_inUse.end())
                m_inUse.push_back(profile.folder);
            kept.push_back(location);
            deleted = false;
            continue;
        }
        const std::string entries = cacheEntriesFolder(cache.family, cache.folder);
        const bool wasCurrent = cache.complete && cache.stamp == m_files.folderStamp(entries);
        const bool removed = removeCacheEntry(m_files, cache.family, cache.folder, location.name, remover, cache.indexDropped);
        cache.indexDropped = true;
        if (!removed) {
            m_problems.push_back({entries + "/" + location.name, std::string("could not be deleted: ") + std::strerror(errno)});
            kept.push_back(location);
            deleted = false;
            continue;
        }
        // Our own removal changes the folder; what is known of it stays whole.
        if (wasCurrent)
            cache.stamp = m_files.folderStamp(entries);
    }
    if (kept.empty())
        catalogue.byAddress.erase(found);
    else
        found->second = std::move(kept);
    return deleted;
}

std::size_t CacheStore::deleteUnlisted(Remover& remover) {
    // Found anew: a profile whose browser started since the listing is left alone now.
    m_catalogue = discover();
    m_inUse = m_catalogue->held;
    std::size_t removed = 0;
    std::vector<std::string> bases;
    for (const BrowserProfile& profile : m_catalogue->profiles) {
        if (std::find(m_inUse.begin(), m_inUse.end(), profile.folder) != m_inUse.end())
            continue;
        bases = {profile.folder};
        for (const std::string& folder : profile.caches) {
            removed += removeCacheRest(m_files, profile.family, folder, remover, m_problems);
            // The caches beside the disk cache sit in the folder that holds it: "<base>/Cache/Cache_Data"
            // or "<base>/cache2".
            const std::string suffix = profile.family == BrowserFamily::Chromium ? "/Cache/Cache_Data" : "/cache2";
            if (folder.ends_with(suffix))
                bases.push_back(folder.substr(0, folder.size() - suffix.size()));
        }
        std::sort(bases.begin(), bases.end());
        bases.erase(std::unique(bases.begin(), bases.end()), bases.end());
        for (const std::string& base : bases)
            removed += removeSideCaches(m_files, profile.family, base, remover, m_problems);
    }
    return removed;
}

} // namespace browsers
