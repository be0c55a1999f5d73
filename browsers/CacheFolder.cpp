#include "browsers/CacheFolder.h"

#include "browsers/CacheKeys.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

namespace browsers {
namespace {

using platform::EntryKind;
using platform::Folder;
using platform::Remover;
using platform::StoreProblem;

bool isHex(char c, bool upper) {
    return (c >= '0' && c <= '9') || (upper ? (c >= 'A' && c <= 'F') : (c >= 'a' && c <= 'f'));
}

bool isSimpleEntryName(std::string_view n) {
    return n.size() == 18 && n.substr(16) == "_0" &&
           std::all_of(n.begin(), n.begin() + 16, [](char c) { return isHex(c, false); });
}

bool isCache2EntryName(std::string_view n) {
    return n.size() == 40 && std::all_of(n.begin(), n.end(), [](char c) { return isHex(c, true); });
}

/// Reads the entry file `name` of the entries folder `dir`; false when it gives no address.
bool readEntryAt(ProfileFiles& files, BrowserFamily family, Folder& dir, const std::string& name, CacheEntryFile& entry) {
    const auto file = files.openReadable(dir, name);
    if (!file)
        return false;
    const auto size = file->size();
    const ReadAt fromFile = [&file](std::string& buf, std::size_t length, std::uint64_t offset) {
        return file->readAt(buf, length, offset);
    };
    auto address = family == BrowserFamily::Firefox ? cache2EntryAddress(fromFile, size) : simpleCacheEntryAddress(fromFile, size);
    if (!address)
        return false;
    entry.name = name;
    entry.address = std::move(*address);
    entry.size = size;
    entry.modified = file->modified();
    return true;
}

/// Whether the file `name` of the entries folder `dir` belongs to an entry a listing names: such
/// an entry goes only when its address is deleted.
bool listedEntryFile(ProfileFiles& files, BrowserFamily family, Folder& dir, const std::string& name) {
    CacheEntryFile entry;
    if (family == BrowserFamily::Firefox)
        return isCache2EntryName(name) && readEntryAt(files, family, dir, name, entry);
    // A simple-cache entry's streams lie in "<hash>_0", "<hash>_1" and "<hash>_s"; its key in "_0".
    const std::string_view n(name);
    if (n.size() != 18 || n[16] != '_' || (n[17] != '0' && n[17] != '1' && n[17] != 's'))
        return false;
    const std::string first = std::string(n.substr(0, 16)) + "_0";
    return isSimpleEntryName(first) && readEntryAt(files, family, dir, first, entry);
}

/// Removes through `remover` every entry of `folder` that `keep` does not keep: files and links
/// and, with `deep`, folders with everything below them. Appends each that stays to `problems`;
/// returns the number removed.
std::size_t removeEntriesOf(Folder& folder, bool deep, Remover& remover, std::vector<StoreProblem>& problems,
                            const std::function<bool(const std::string&)>& keep = {}) {
    std::vector<std::string> names; // read whole before removing anything
    const bool read = folder.names([&](const std::string& name, EntryKind kind) {
        if (kind == EntryKind::Unknown)
            if (const auto entry = folder.entry(name))
                kind = entry->isLink() ? EntryKind::Link : entry->isDirectory() ? EntryKind::Directory : EntryKind::File;
        if ((deep || kind != EntryKind::Directory) && !(keep && keep(name)))
            names.push_back(name);
        return true;
    });
    if (!read)
        problems.push_back({folder.path(), std::string("could not be read: ") + std::strerror(errno)});
    std::size_t removed = 0;
    for (const std::string& name : names) {
        if (remover.removeEntry(folder, name))
            ++removed;
        else
            problems.push_back({folder.path() + "/" + name, "could not be deleted"});
    }
    return removed;
}

/// The subfolder `name` of `at`; null, with what kept it closed named in `problems`, when it is
/// not there or cannot be opened.
std::unique_ptr<Folder> subfolder(Folder& at, const std::string& name, std::vector<StoreProblem>& problems) {
    auto sub = at.openFolder(name);
    if (!sub && errno != ENOENT && errno != ENOTDIR)
        problems.push_back({at.path() + "/" + name, std::string("could not be opened: ") + std::strerror(errno)});
    return sub;
}

/// The same as removeEntriesOf for the folder `name` of `at`, when it is there.
std::size_t removeEntriesIn(Folder& at, const std::string& name, bool deep, Remover& remover,
                            std::vector<StoreProblem>& problems) {
    const auto sub = subfolder(at, name, problems);
    return sub ? removeEntriesOf(*sub, deep, remover, problems) : 0;
}

/// Removes the files of the entries folder `entries` that no listing names.
std::size_t removeUnlistedEntries(ProfileFiles& files, BrowserFamily family, Folder& entries, Remover& remover,
                                  std::vector<StoreProblem>& problems) {
    return removeEntriesOf(entries, false, remover, problems, [&](const std::string& file) {
        // "index" only marks a folder as a simple cache.
        return (family == BrowserFamily::Chromium && file == "index") || listedEntryFile(files, family, entries, file);
    });
}

/// Makes the cache's index invalid, so that the browser rebuilds it from the entry files it finds
/// rather than trusting a record of entries that are gone: the simple cache trusts
/// index-dir/the-real-index only while it is there, cache2 its index and journal.
void dropIndex(BrowserFamily family, Folder& cache, Remover& remover) {
    if (family == BrowserFamily::Chromium) {
        if (const auto indexDir = cache.openFolder("index-dir"))
            remover.removeEntry(*indexDir, "the-real-index");
        return;
    }
    for (const char* index : {"index", "index.tmp", "index.log"})
        remover.removeEntry(cache, index);
}

} // namespace

std::string cacheEntriesFolder(BrowserFamily family, const std::string& folder) {
    return family == BrowserFamily::Firefox ? folder + "/entries" : folder;
}

CacheFolderReader::CacheFolderReader(ProfileFiles& files, BrowserFamily family, const std::string& folder)
    : m_files(files), m_family(family), m_entries(cacheEntriesFolder(family, folder)) {
    // Stamped before it is listed: an entry added while it is read leaves a later stamp different.
    m_stamp = files.folderStamp(m_entries);
    m_folder = files.openFolder(m_entries, true);
    if (!m_folder)
        return;
    m_folder->names([this](const std::string& name, EntryKind kind) {
        const bool candidate = m_family == BrowserFamily::Firefox ? isCache2EntryName(name) : isSimpleEntryName(name);
        if (candidate && (kind == EntryKind::File || kind == EntryKind::Unknown))
            m_names.push_back(name);
        return true;
    });
}

bool CacheFolderReader::next(CacheEntryFile& entry) {
    while (m_folder && m_next < m_names.size())
        if (readEntryAt(m_files, m_family, *m_folder, m_names[m_next++], entry))
            return true;
    return false;
}

bool removeCacheEntry(ProfileFiles& files, BrowserFamily family, const std::string& folder, const std::string& name,
                      Remover& remover, bool indexDropped) {
    const auto cache = files.openFolder(folder, true);
    if (!cache)
        return false;
    if (!indexDropped)
        dropIndex(family, *cache, remover);
    if (family == BrowserFamily::Chromium) {
        const std::string stem = name.substr(0, name.size() - 2);
        bool gone = remover.removeEntry(*cache, stem + "_0");
        gone = remover.removeEntry(*cache, stem + "_1") && gone;
        return remover.removeEntry(*cache, stem + "_s") && gone;
    }
    const auto entries = cache->openFolder("entries");
    return entries && remover.removeEntry(*entries, name);
}

std::size_t removeCacheRest(ProfileFiles& files, BrowserFamily family, const std::string& folder, Remover& remover,
                            std::vector<StoreProblem>& problems) {
    const auto cache = files.openFolder(folder, false);
    if (!cache) {
        if (errno != ENOENT)
            problems.push_back({folder, std::string("could not be opened: ") + std::strerror(errno)});
        return 0;
    }
    dropIndex(family, *cache, remover);
    if (family == BrowserFamily::Chromium)
        return removeUnlistedEntries(files, family, *cache, remover, problems);
    std::size_t removed = 0;
    if (const auto entries = subfolder(*cache, "entries", problems))
        removed += removeUnlistedEntries(files, family, *entries, remover, problems);
    removed += removeEntriesIn(*cache, "doomed", false, remover, problems);
    // Folders the browser moved aside to delete later ("trash" and a number) go whole.
    removed += removeEntriesOf(*cache, true, remover, problems, [](const std::string& name) {
        return !name.starts_with("trash");
    });
    return removed;
}

std::size_t removeSideCaches(ProfileFiles& files, BrowserFamily family, const std::string& base, Remover& remover,
                             std::vector<StoreProblem>& problems) {
    const auto root = files.openFolder(base, false);
    if (!root)
        return 0;
    if (family == BrowserFamily::Firefox)
        return removeEntriesIn(*root, "thumbnails", true, remover, problems);
    // Compiled scripts keep the address of the script they came from; the others keep what pages
    // drew or fetched. Each is rebuilt by the browser when it finds it empty.
    std::size_t removed = 0;
    for (const char* name : {"Code Cache", "GPUCache", "DawnGraphiteCache", "DawnWebGPUCache", "Shared Dictionary"})
        removed += removeEntriesIn(*root, name, true, remover, problems);
    return removed;
}

} // namespace browsers
