#include "cli/CountingPlatform.h"

#include "platform/Folder.h"

#include <algorithm>
#include <unordered_set>

namespace cli {
namespace {

using Ledger = CountingPlatform::Ledger;

class CountingRawFile final : public platform::RawFile {
public:
    CountingRawFile(std::unique_ptr<platform::RawFile> real, Ledger& ledger)
        : m_real(std::move(real)), m_ledger(ledger) {}

    std::size_t read(void* buffer, std::size_t count) override { return m_real->read(buffer, count); }
    std::size_t write(const void* data, std::size_t count) override {
        const std::size_t written = m_real->write(data, count);
        m_ledger.counts.bytesWritten += written;
        return written;
    }
    std::int64_t seek(std::int64_t distance, From from) override { return m_real->seek(distance, from); }
    bool flush() override { return m_real->flush(); }
    void startFlush(std::int64_t offset, std::int64_t length) override { m_real->startFlush(offset, length); }
    bool truncate() override { return m_real->truncate(); }
    std::intptr_t nativeHandle() const override { return m_real->nativeHandle(); }
    std::optional<platform::FileInfo> info() const override { return m_real->info(); }
    bool openElsewhere() const override { return m_real->openElsewhere(); }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> dataRanges() const override { return m_real->dataRanges(); }
    std::unique_ptr<platform::RawFile> openUncached() const override { return m_real->openUncached(); }
    std::size_t readAlignment() const override { return m_real->readAlignment(); }

private:
    std::unique_ptr<platform::RawFile> m_real;
    Ledger& m_ledger;
};

std::unique_ptr<platform::RawFile> counted(std::unique_ptr<platform::RawFile> file, Ledger& ledger) {
    return file ? std::make_unique<CountingRawFile>(std::move(file), ledger) : nullptr;
}

/// An open folder whose writes are counted; what became of its entries is told by the
/// destruction engine's verdicts.
class CountingFolder final : public platform::Folder {
public:
    CountingFolder(std::unique_ptr<platform::Folder> real, Ledger& ledger)
        : m_real(std::move(real)), m_ledger(ledger) {}

    const std::string& path() const override { return m_real->path(); }
    platform::FileInfo self() const override { return m_real->self(); }
    bool list(const std::function<bool(const platform::FileInfo&)>& visit) override { return m_real->list(visit); }
    bool names(const std::function<bool(const std::string&, platform::EntryKind)>& visit) override {
        return m_real->names(visit);
    }
    std::optional<platform::FileInfo> entry(const std::string& name) override { return m_real->entry(name); }
    std::unique_ptr<platform::Folder> openFolder(const std::string& name) override {
        auto folder = m_real->openFolder(name);
        return folder ? std::make_unique<CountingFolder>(std::move(folder), m_ledger) : nullptr;
    }
    using platform::Folder::openFile;
    std::unique_ptr<platform::RawFile> openFile(const std::string& name, Create create) override {
        return counted(m_real->openFile(name, create), m_ledger);
    }
    std::unique_ptr<platform::RawFile> openForOverwrite(const std::string& name, Refusal& why) override {
        return counted(m_real->openForOverwrite(name, why), m_ledger);
    }
    bool isInUse(const std::string& name) override { return m_real->isInUse(name); }
    std::vector<std::string> extraStreams(const std::string& name) override { return m_real->extraStreams(name); }
    std::unique_ptr<platform::RawFile> openStream(const std::string& name, const std::string& stream) override {
        return counted(m_real->openStream(name, stream), m_ledger);
    }
    bool removeFile(const std::string& name) override { return m_real->removeFile(name); }
    bool removeFolder(const std::string& name) override { return m_real->removeFolder(name); }
    bool makeNormal(const std::string& name) override { return m_real->makeNormal(name); }
    std::intptr_t nativeHandle() const override { return m_real->nativeHandle(); }

private:
    std::unique_ptr<platform::Folder> m_real;
    Ledger& m_ledger;
};

class CountingRawFiles final : public platform::RawFiles {
public:
    CountingRawFiles(platform::RawFiles& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    std::unique_ptr<platform::RawFile> open(const std::string& path) override {
        return counted(m_real.open(path), m_ledger);
    }
    std::unique_ptr<platform::RawFile> openForReading(const std::string& path) override {
        return m_real.openForReading(path);
    }
    int lastError() const override { return m_real.lastError(); }
    void setLastError(int code) override { m_real.setLastError(code); }
    std::string errorText(int code) const override { return m_real.errorText(code); }

private:
    platform::RawFiles& m_real;
    Ledger& m_ledger;
};

class CountingFileSystem final : public platform::FileSystem {
public:
    CountingFileSystem(platform::FileSystem& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    bool list(const std::string& dir, const std::string& pattern,
              const std::function<bool(const platform::FileInfo&)>& visit) override {
        return m_real.list(dir, pattern, visit);
    }
    bool names(const std::string& dir,
               const std::function<bool(const std::string&, platform::EntryKind)>& visit) override {
        return m_real.names(dir, visit);
    }
    bool matches(const std::string& name, const std::string& pattern) const override {
        return m_real.matches(name, pattern);
    }
    std::optional<platform::FileInfo> info(const std::string& path) override { return m_real.info(path); }
    std::unique_ptr<platform::Folder> openFolder(const std::string& path) override {
        auto folder = m_real.openFolder(path);
        return folder ? std::make_unique<CountingFolder>(std::move(folder), m_ledger) : nullptr;
    }
    bool removeFile(const std::string& path) override { return m_real.removeFile(path); }
    bool removeDirectory(const std::string& path) override { return m_real.removeDirectory(path); }
    bool createDirectory(const std::string& path) override { return m_real.createDirectory(path); }
    bool makeNormal(const std::string& path) override { return m_real.makeNormal(path); }
    bool isInUse(const std::string& path) override { return m_real.isInUse(path); }
    char separator() const override { return m_real.separator(); }

private:
    platform::FileSystem& m_real;
    Ledger& m_ledger;
};

class CountingRegistry final : public platform::Registry {
public:
    CountingRegistry(platform::Registry& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    long openKey(platform::RegKey root, const std::string& subKey, platform::RegKey& result) override {
        return m_real.openKey(root, subKey, result);
    }
    long createKey(platform::RegKey root, const std::string& subKey, platform::RegKey& result) override {
        return m_real.createKey(root, subKey, result);
    }
    long queryValue(platform::RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override {
        return m_real.queryValue(key, name, type, data, size);
    }
    long setValue(platform::RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override {
        const long result = m_real.setValue(key, name, type, data, size);
        if (result == platform::RegResult::Success)
            ++m_ledger.counts.registryValuesWritten;
        return result;
    }
    long deleteValue(platform::RegKey key, const std::string& name) override {
        const long result = m_real.deleteValue(key, name);
        if (result == platform::RegResult::Success)
            ++m_ledger.counts.registryValuesRemoved;
        return result;
    }
    long closeKey(platform::RegKey key) override { return m_real.closeKey(key); }
    long valueNames(platform::RegKey key, std::vector<std::string>& names) override {
        return m_real.valueNames(key, names);
    }

private:
    platform::Registry& m_real;
    Ledger& m_ledger;
};

class CountingUrlCache final : public platform::UrlCache {
public:
    CountingUrlCache(platform::UrlCache& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    platform::UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) override {
        return m_real.findFirst(buffer, size);
    }
    bool findNext(platform::UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) override {
        return m_real.findNext(enumeration, buffer, size);
    }
    void findClose(platform::UrlCacheEnum enumeration) override { m_real.findClose(enumeration); }
    bool deleteEntry(const std::string& url) override {
        const bool deleted = m_real.deleteEntry(url);
        if (deleted)
            ++m_ledger.counts.cacheEntriesDeleted;
        return deleted;
    }
    // Files without a readable key are no entries of the list: they are not counted as entries.
    std::size_t deleteUnlisted() override { return m_real.deleteUnlisted(); }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<platform::StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

private:
    platform::UrlCache& m_real;
    Ledger& m_ledger;
};

class CountingUrlHistory final : public platform::UrlHistory {
public:
    CountingUrlHistory(platform::UrlHistory& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override {
        const bool added = m_real.addUrl(url, title, flags);
        if (added)
            ++m_ledger.counts.historyEntriesAdded;
        return added;
    }
    bool deleteUrl(const std::string& url, std::uint32_t flags) override {
        const bool deleted = m_real.deleteUrl(url, flags);
        if (deleted)
            ++m_ledger.counts.historyEntriesDeleted;
        return deleted;
    }
    std::unique_ptr<platform::UrlHistoryEnum> enumUrls() override { return m_real.enumUrls(); }
    bool clearHistory() override {
        // Counted once before and once after: the store says nothing of how much it held.
        const std::uint64_t before = entries();
        const bool cleared = m_real.clearHistory();
        m_ledger.counts.historyEntriesDeleted += before - std::min(before, entries());
        return cleared;
    }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<platform::StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

private:
    /// The addresses the store holds: one held by two browsers is one entry.
    std::uint64_t entries() {
        std::unordered_set<std::string> addresses;
        if (auto all = m_real.enumUrls()) {
            platform::StatUrl record;
            while (all->next(record) == 1)
                addresses.insert(std::move(record.pwcsUrl));
        }
        return addresses.size();
    }

    platform::UrlHistory& m_real;
    Ledger& m_ledger;
};

class CountingRecycleBin final : public platform::RecycleBin {
public:
    CountingRecycleBin(platform::RecycleBin& real, Ledger& ledger) : m_real(real), m_ledger(ledger) {}

    std::vector<platform::TrashItem> items(const std::string& root) override { return m_real.items(root); }
    bool empty(const std::string& root, unsigned flags, platform::RecycleBinUi& ui) override {
        const std::size_t before = m_real.items(root).size();
        const bool emptied = m_real.empty(root, flags, ui);
        const std::size_t after = m_real.items(root).size();
        m_ledger.counts.trashItemsRemoved += before - std::min(before, after);
        return emptied;
    }
    std::vector<std::string> recentDocuments() override { return m_real.recentDocuments(); }
    bool clearRecentDocuments() override {
        const std::size_t before = m_real.recentDocuments().size();
        const bool cleared = m_real.clearRecentDocuments();
        const std::size_t after = m_real.recentDocuments().size();
        m_ledger.counts.recentDocumentsRemoved += before - std::min(before, after);
        return cleared;
    }
    std::vector<platform::RefusedRecord> takeRefused() override { return m_real.takeRefused(); }

private:
    platform::RecycleBin& m_real;
    Ledger& m_ledger;
};

} // namespace

struct CountingPlatform::Facilities {
    Facilities(platform::Platform& real, Ledger& ledger)
        : files(real.fileSystem(), ledger), rawFiles(real.rawFiles(), ledger),
          registry(real.registry(), ledger), urlCache(real.urlCache(), ledger), urlHistory(real.urlHistory(), ledger),
          recycleBin(real.recycleBin(), ledger) {}

    CountingFileSystem files;
    CountingRawFiles rawFiles;
    CountingRegistry registry;
    CountingUrlCache urlCache;
    CountingUrlHistory urlHistory;
    CountingRecycleBin recycleBin;
};

CountingPlatform::CountingPlatform(platform::Platform& real)
    : m_real(real), m_facilities(std::make_unique<Facilities>(real, m_ledger)) {}

CountingPlatform::~CountingPlatform() = default;

ChangeCounts CountingPlatform::counts() const {
    return m_ledger.counts;
}

platform::RawFiles& CountingPlatform::rawFiles() {
    return m_facilities->rawFiles;
}

platform::FileSystem& CountingPlatform::fileSystem() {
    return m_facilities->files;
}

platform::Registry& CountingPlatform::registry() {
    return m_facilities->registry;
}

platform::UrlCache& CountingPlatform::urlCache() {
    return m_facilities->urlCache;
}

platform::UrlHistory& CountingPlatform::urlHistory() {
    return m_facilities->urlHistory;
}

platform::RecycleBin& CountingPlatform::recycleBin() {
    return m_facilities->recycleBin;
}

} // namespace cli
