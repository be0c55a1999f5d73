#include "platform/linux/CacheFolder.h"

#include "browsers/CacheKeys.h"
#include "platform/linux/Descriptors.h"
#include "platform/linux/LinuxFolder.h"

#include <algorithm>
#include <functional>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

bool isHex(char c, bool upper) {
    return (c >= '0' && c <= '9') || (upper ? (c >= 'A' && c <= 'F') : (c >= 'a' && c <= 'f'));
}

bool isSimpleEntryName(const char* name) {
    const std::string_view n(name);
    return n.size() == 18 && n.substr(16) == "_0" &&
           std::all_of(n.begin(), n.begin() + 16, [](char c) { return isHex(c, false); });
}

bool isCache2EntryName(const char* name) {
    const std::string_view n(name);
    return n.size() == 40 && std::all_of(n.begin(), n.end(), [](char c) { return isHex(c, true); });
}

OpenedFile openEntry(int dir, const char* name) {
    // Reading the cache is no use of it: leave access times as the browser left them.
    OpenedFile opened = openRegularFile(dir, name, false, O_NOATIME);
    if (opened.result == ReadResult::Failed && errno == EPERM)
        opened = openRegularFile(dir, name, false);
    return opened;
}

bool readAt(int fd, std::string& buf, std::size_t length, std::uint64_t offset) {
    buf.resize(length);
    std::size_t done = 0;
    while (done < length) {
        const ssize_t n = ::pread(fd, buf.data() + done, length - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += static_cast<std::size_t>(n);
    }
    buf.resize(done);
    return done == length;
}

/// Reads the entry file `name` of the entries folder `dir`; false when it gives no address.
bool readEntryAt(BrowserFamily family, int dir, const char* name, CacheEntryFile& entry) {
    const OpenedFile opened = openEntry(dir, name);
    if (opened.result != ReadResult::Read)
        return false;
    const UniqueFd& fd = opened.fd;
    const struct stat& st = opened.st;
    const auto size = static_cast<std::uint64_t>(st.st_size);
    const browsers::ReadAt fromFile = [&fd](std::string& buf, std::size_t length, std::uint64_t offset) {
        return readAt(fd.get(), buf, length, offset);
    };
    auto address = family == BrowserFamily::Firefox ? browsers::cache2EntryAddress(fromFile, size)
                                                      : browsers::simpleCacheEntryAddress(fromFile, size);
    if (!address)
        return false;
    entry.name = name;
    entry.address = std::move(*address);
    entry.size = size;
    entry.modified = st.st_mtim.tv_sec;
    return true;
}

/// Whether the file `name` of the entries folder `dir` belongs to an entry a listing names: such
/// an entry goes only when its address is deleted.
bool listedEntryFile(BrowserFamily family, int dir, const char* name) {
    CacheEntryFile entry;
    if (family == BrowserFamily::Firefox)
        return isCache2EntryName(name) && readEntryAt(family, dir, name, entry);
    // A simple-cache entry's streams lie in "<hash>_0", "<hash>_1" and "<hash>_s"; its key in "_0".
    const std::string_view n(name);
    if (n.size() != 18 || n[16] != '_' || (n[17] != '0' && n[17] != '1' && n[17] != 's'))
        return false;
    const std::string first = std::string(n.substr(0, 16)) + "_0";
    return isSimpleEntryName(first.c_str()) && readEntryAt(family, dir, first.c_str(), entry);
}

/// The folder `name` of the folder `at` (`at` itself when empty), shown as below `path`; null when
/// it is not there or is no folder.
std::unique_ptr<LinuxFolder> folderAt(int at, const std::string& path, const std::string& name = {}) {
    return LinuxFolder::open(at, name, name.empty() ? path : path + "/" + name);
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

/// The same for the folder `name` of `at`, when it is there.
std::size_t removeEntriesIn(int at, const std::string& path, const std::string& name, bool deep, Remover& remover,
                            std::vector<StoreProblem>& problems) {
    const auto sub = folderAt(at, path, name);
    if (!sub && errno != ENOENT && errno != ENOTDIR)
        problems.push_back({path + "/" + name, std::string("could not be opened: ") + std::strerror(errno)});
    return sub ? removeEntriesOf(*sub, deep, remover, problems) : 0;
}

/// Removes the files of the entries folder `name` of `at` that no listing names.
std::size_t removeUnlistedEntries(BrowserFamily family, int at, const std::string& path, const std::string& name,
                                  Remover& remover, std::vector<StoreProblem>& problems) {
    const auto sub = folderAt(at, path, name);
    if (!sub) {
        if (errno != ENOENT && errno != ENOTDIR)
            problems.push_back({path + "/" + name, std::string("could not be opened: ") + std::strerror(errno)});
        return 0;
    }
    const int dir = static_cast<int>(sub->nativeHandle());
    return removeEntriesOf(*sub, false, remover, problems, [family, dir](const std::string& file) {
        // "index" only marks a folder as a simple cache.
        return (family == BrowserFamily::Chromium && file == "index") || listedEntryFile(family, dir, file.c_str());
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

/// The cache folder `folder` itself, opened where it leads.
std::unique_ptr<LinuxFolder> openCache(const std::string& folder) {
    const UniqueFd cache(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return cache ? folderAt(cache.get(), folder) : nullptr;
}

} // namespace

std::string cacheEntriesFolder(BrowserFamily family, const std::string& folder) {
    return family == BrowserFamily::Firefox ? folder + "/entries" : folder;
}

FolderStamp folderStamp(const std::string& folder) {
    FolderStamp stamp;
    struct stat st {};
    if (::stat(folder.c_str(), &st) == 0) {
        stamp.device = st.st_dev;
        stamp.inode = st.st_ino;
        stamp.modified = st.st_mtim;
    }
    return stamp;
}

CacheFolderReader::CacheFolderReader(BrowserFamily family, const std::string& folder)
    : m_family(family), m_entries(cacheEntriesFolder(family, folder)) {
    const int fd = ::open(m_entries.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    struct stat st {};
    if (::fstat(fd, &st) == 0) {
        m_stamp.device = st.st_dev;
        m_stamp.inode = st.st_ino;
        m_stamp.modified = st.st_mtim;
    }
    m_dir = ::fdopendir(fd);
    if (!m_dir)
        ::close(fd);
}

CacheFolderReader::~CacheFolderReader() {
    if (m_dir)
        ::closedir(m_dir);
}

bool CacheFolderReader::next(CacheEntryFile& entry) {
    if (!m_dir)
        return false;
    while (const dirent* e = ::readdir(m_dir)) {
        if (e->d_type != DT_REG && e->d_type != DT_UNKNOWN)
            continue;
        const bool candidate = m_family == BrowserFamily::Firefox ? isCache2EntryName(e->d_name) : isSimpleEntryName(e->d_name);
        if (candidate && readEntry(e->d_name, entry))
            return true;
    }
    ::closedir(m_dir);
    m_dir = nullptr;
    return false;
}

bool CacheFolderReader::readEntry(const char* name, CacheEntryFile& entry) {
    return readEntryAt(m_family, ::dirfd(m_dir), name, entry);
}

bool removeCacheEntry(BrowserFamily family, const std::string& folder, const std::string& name, Remover& remover) {
    const auto cache = openCache(folder);
    if (!cache)
        return false;
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

std::size_t removeCacheRest(BrowserFamily family, const std::string& folder, Remover& remover,
                            std::vector<StoreProblem>& problems) {
    const UniqueFd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const auto cache = fd ? folderAt(fd.get(), folder) : nullptr;
    if (!cache) {
        if (errno != ENOENT)
            problems.push_back({folder, std::string("could not be opened: ") + std::strerror(errno)});
        return 0;
    }
    dropIndex(family, *cache, remover);
    if (family == BrowserFamily::Chromium)
        return removeUnlistedEntries(family, fd.get(), folder, "", remover, problems);
    std::size_t removed = removeUnlistedEntries(family, fd.get(), folder, "entries", remover, problems);
    removed += removeEntriesIn(fd.get(), folder, "doomed", false, remover, problems);
    // Folders the browser moved aside to delete later ("trash" and a number) go whole.
    removed += removeEntriesOf(*cache, true, remover, problems, [](const std::string& name) {
        return !name.starts_with("trash");
    });
    return removed;
}

std::size_t removeSideCaches(BrowserFamily family, const std::string& base, Remover& remover,
                             std::vector<StoreProblem>& problems) {
    const UniqueFd root(::open(base.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!root)
        return 0;
    if (family == BrowserFamily::Firefox)
        return removeEntriesIn(root.get(), base, "thumbnails", true, remover, problems);
    // Compiled scripts keep the address of the script they came from; the others keep what pages
    // drew or fetched. Each is rebuilt by the browser when it finds it empty.
    std::size_t removed = 0;
    for (const char* name : {"Code Cache", "GPUCache", "DawnGraphiteCache", "DawnWebGPUCache", "Shared Dictionary"})
        removed += removeEntriesIn(root.get(), base, name, true, remover, problems);
    return removed;
}

} // namespace platform::linux
