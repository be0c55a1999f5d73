#include "cleaning/TraceCleaner.h"

#include "cleaning/CleanIT.h"
#include "memory/MemoryBlock.h"
#include "wipe/Engine.h"

#include <cstddef>
#include <unordered_set>

namespace cleaning {
namespace {

/// The bytes of each cache entry copied out of the entry buffer: the record's head, which holds
/// the source-address pointer (the only field used).
constexpr std::int32_t EntryBytes = 84;
static_assert(sizeof(platform::UrlCacheEntryInfo) >= EntryBytes);
static_assert(offsetof(platform::UrlCacheEntryInfo, lpszSourceUrlName) + sizeof(char*) <= EntryBytes);

const std::string RecordFileName = "index.dat";

std::uintptr_t address(const void* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer);
}

} // namespace

TraceCleaner::TraceCleaner(platform::Platform& platform, TraceView& view, core::ProblemSink* problems,
                           core::VerdictSink* verdicts)
    : m_platform(platform), m_view(view), m_problems(problems), m_engine(platform, verdicts, problems),
      m_storeFiles(platform, nullptr, nullptr), m_temp(platform, m_engine, view, problems) {}

void TraceCleaner::ReadFolderPaths() {
    m_paths = cleaning::ReadFolderPaths(m_platform);
}

void TraceCleaner::skipped(const std::string& item, const std::string& reason) {
    if (m_problems)
        m_problems->skipped(item, reason);
}

void ReportStoresInUse(core::ProblemSink* problems, const std::vector<std::string>& stores, const std::string& what) {
    if (!problems)
        return;
    for (const std::string& store : stores)
        problems->skipped(store, "its browser is running; its " + what + " was left alone");
}

void ReportStoreProblems(core::ProblemSink* problems, const std::vector<platform::StoreProblem>& stores) {
    if (!problems)
        return;
    for (const platform::StoreProblem& store : stores)
        problems->skipped(store.file, store.reason);
}

void TraceCleaner::ShowCache() {
    m_view.clearList();
    auto& cache = m_platform.urlCache();
    memory::MemoryBlock block(m_platform.virtualMemory());
    // Each entry is asked for twice: once for the bytes it needs, once into a block of that size.
    // An address that two browsers hold is one line: deleting it deletes it in both.
    std::unordered_set<std::string> listed;
    const auto listSource = [&](std::uint32_t size) {
        platform::UrlCacheEntryInfo entry;
        block.ReadFrom(address(&entry), EntryBytes);
        if (!entry.lpszSourceUrlName)
            return;
        std::string line = block.ExtractString(address(entry.lpszSourceUrlName), static_cast<std::int32_t>(size));
        if (listed.insert(line).second)
            m_view.addLine(line);
    };
    std::uint32_t size = 0;
    cache.findFirst(nullptr, size);
    platform::UrlCacheEnum enumeration = 0;
    if (size > 0) {
        block.Allocate(static_cast<std::int32_t>(size));
        enumeration = cache.findFirst(reinterpret_cast<void*>(block.Handle()), size);
        if (enumeration)
            listSource(size);
    }
    while (enumeration) {
        size = 0;
        cache.findNext(enumeration, nullptr, size);
        if (size < 1)
            break;
        block.Allocate(static_cast<std::int32_t>(size));
        if (!block.Handle() || !cache.findNext(enumeration, reinterpret_cast<void*>(block.Handle()), size))
            break; // an enumeration error ends the listing with what was found so far
        listSource(size);
    }
    if (enumeration)
        cache.findClose(enumeration);
    block.ReleaseMemory();
    ReportStoresInUse(m_problems, cache.storesInUse(), "cache");
    ReportStoreProblems(m_problems, cache.storeProblems());
}

void TraceCleaner::deleteListed(bool always) {
    auto& cache = m_platform.urlCache();
    const bool any = m_view.lineCount() > 0;
    for (std::size_t i = 0; i < m_view.lineCount() && !m_view.interrupted(); ++i) {
        const std::string url = m_view.line(i);
        // An entry not found any more was deleted by its browser; one that stays is named by the
        // cache's problems.
        if (cache.deleteEntry(url, m_storeFiles))
            m_view.itemDone(TraceStep::CacheEntries, url);
    }
    m_view.clearList();
    if (m_view.interrupted() || !(any || always))
        return;
    // Files whose key could not be read were never listed, and the caches beside the disk cache
    // hold no entries by address: both go now.
    cache.deleteUnlisted(m_storeFiles);
}

void TraceCleaner::DeleteListedCacheEntries() {
    deleteListed(false);
    ReportStoresInUse(m_problems, m_platform.urlCache().storesInUse(), "cache");
    ReportStoreProblems(m_problems, m_platform.urlCache().storeProblems());
}

void TraceCleaner::CleanAll() {
    ShowCache();
    core::SilentPrompts silent; // the typed-URL clean asks nothing
    CleanIT(m_platform, silent, m_problems).CleanTypedURLs();
    deleteListed(true);
    ReportStoreProblems(m_problems, m_platform.urlCache().storeProblems());
    // The cache lets go of its record files first: on Windows it holds the cookie folder's one.
    m_platform.urlCache().release();
    if (m_view.interrupted())
        return;
    cleanCookieRecords();
    if (m_view.interrupted())
        return;
    if (!m_history)
        return;
    // Counted by address, before and after: an address that two browsers held is one entry, and
    // one a store kept (its browser runs, its database is damaged) is not counted.
    const auto addresses = [this] {
        std::unordered_set<std::string> urls;
        for (const auto& item : m_history->NewEnum())
            urls.insert(item->URL());
        return urls;
    };
    m_history->Refresh("", 0);
    const std::unordered_set<std::string> before = addresses();
    m_history->Clear(); // reads the store afresh
    const std::unordered_set<std::string> after = addresses();
    for (const std::string& url : before)
        if (!after.count(url))
            m_view.itemDone(TraceStep::History, url);
    ReportStoresInUse(m_problems, m_platform.urlHistory().storesInUse(), "history");
    ReportStoreProblems(m_problems, m_platform.urlHistory().storeProblems());
}

void TraceCleaner::cleanCookieRecords() {
    // An empty path would be the current folder: no cookie folder recorded, nothing to clean.
    const std::string& path = m_paths.CookiesPath;
    auto folder = path.empty() ? nullptr : m_platform.fileSystem().openFolder(path);
    if (!folder)
        return;
    m_view.clearList();
    folder->list([&](const platform::FileInfo& fi) {
        if (!fi.isDirectory() || fi.isLink())
            m_view.addLine(m_platform.fileSystem().join(path, fi.name));
        return true;
    });
    for (std::size_t i = 0; i < m_view.lineCount() && !m_view.interrupted(); ++i) {
        const std::string line = m_view.line(i);
        if (line.size() < RecordFileName.size() ||
            line.compare(line.size() - RecordFileName.size(), RecordFileName.size(), RecordFileName) != 0)
            continue; // the cookies themselves stay
        const std::string name = wipe::splitPath(m_platform.fileSystem(), line).second;
        const auto info = folder->entry(name);
        using Kept = TempFolderClean::Kept;
        const Kept verdict = info ? TempFolderClean::kept(*folder, *info) : Kept::NotAFile;
        if (verdict == Kept::InUse)
            skipped(line, "is open in a running program; left alone");
        if (verdict != Kept::No)
            continue;
        // Deleted first on purpose: the wipe then finds nothing, unless the deletion failed.
        if (m_engine.remove(*folder, name).removed || m_temp.wipeEntry(*folder, name))
            m_view.itemDone(TraceStep::CookieFiles, line);
    }
    m_view.clearList();
}

} // namespace cleaning
