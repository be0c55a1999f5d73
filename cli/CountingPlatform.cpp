#include "cli/CountingPlatform.h"

#include <algorithm>
#include <unordered_set>

namespace cli {
namespace {

using platform::Folder;
using platform::RawFile;

class CountingRawFile final : public platform::ProxyRawFile {
public:
    CountingRawFile(std::unique_ptr<RawFile> real, ChangeCounts& counts)
        : ProxyRawFile(std::move(real)), m_counts(counts) {}

    std::size_t write(const void* data, std::size_t count) override {
        const std::size_t written = real().write(data, count);
        m_counts.bytesWritten += written;
        return written;
    }

private:
    ChangeCounts& m_counts;
};

std::unique_ptr<RawFile> counted(std::unique_ptr<RawFile> file, ChangeCounts& counts) {
    return file ? std::make_unique<CountingRawFile>(std::move(file), counts) : nullptr;
}

/// An open folder whose writes are counted; what became of its entries is told by the
/// destruction engine's verdicts.
class CountingFolder final : public platform::ProxyFolder {
public:
    CountingFolder(std::unique_ptr<Folder> real, ChangeCounts& counts)
        : ProxyFolder(std::move(real)), m_counts(counts) {}

    std::unique_ptr<Folder> openFolder(const std::string& name) override {
        return countedFolder(real().openFolder(name), m_counts);
    }
    using Folder::openFile;
    std::unique_ptr<RawFile> openFile(const std::string& name, Create create) override {
        return counted(real().openFile(name, create), m_counts);
    }
    std::unique_ptr<RawFile> openForOverwrite(const std::string& name, Refusal& why) override {
        return counted(real().openForOverwrite(name, why), m_counts);
    }

    static std::unique_ptr<Folder> countedFolder(std::unique_ptr<Folder> folder, ChangeCounts& counts) {
        return folder ? std::make_unique<CountingFolder>(std::move(folder), counts) : nullptr;
    }
    std::unique_ptr<RawFile> openStream(const std::string& name, const std::string& stream) override {
        return counted(real().openStream(name, stream), m_counts);
    }

private:
    ChangeCounts& m_counts;
};

class CountingRawFiles final : public platform::ProxyRawFiles {
public:
    CountingRawFiles(platform::RawFiles& real, ChangeCounts& counts)
        : ProxyRawFiles(real), m_counts(counts) {}

    std::unique_ptr<RawFile> open(const std::string& path) override {
        return counted(real().open(path), m_counts);
    }

private:
    ChangeCounts& m_counts;
};

class CountingFileSystem final : public platform::ProxyFileSystem {
public:
    CountingFileSystem(platform::FileSystem& real, ChangeCounts& counts)
        : ProxyFileSystem(real), m_counts(counts) {}

    std::unique_ptr<Folder> openFolder(const std::string& path) override {
        return CountingFolder::countedFolder(real().openFolder(path), m_counts);
    }

private:
    ChangeCounts& m_counts;
};

class CountingRegistry final : public platform::ProxyRegistry {
public:
    CountingRegistry(platform::Registry& real, ChangeCounts& counts)
        : ProxyRegistry(real), m_counts(counts) {}

    long setValue(platform::RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override {
        const long result = real().setValue(key, name, type, data, size);
        if (result == platform::RegResult::Success)
            ++m_counts.registryValuesWritten;
        return result;
    }
    long deleteValue(platform::RegKey key, const std::string& name) override {
        const long result = real().deleteValue(key, name);
        if (result == platform::RegResult::Success)
            ++m_counts.registryValuesRemoved;
        return result;
    }

private:
    ChangeCounts& m_counts;
};

class CountingRecycleBin final : public platform::ProxyRecycleBin {
public:
    CountingRecycleBin(platform::RecycleBin& real, ChangeCounts& counts)
        : ProxyRecycleBin(real), m_counts(counts) {}

    bool empty(const std::string& root, unsigned flags, platform::RecycleBinUi& ui) override {
        const std::size_t before = real().items(root).size();
        const bool emptied = real().empty(root, flags, ui);
        const std::size_t after = real().items(root).size();
        m_counts.trashItemsRemoved += before - std::min(before, after);
        return emptied;
    }
    bool clearRecentDocuments(platform::Remover& remover) override {
        const std::size_t before = real().recentDocuments().size();
        const bool cleared = real().clearRecentDocuments(remover);
        const std::size_t after = real().recentDocuments().size();
        m_counts.recentDocumentsRemoved += before - std::min(before, after);
        return cleared;
    }

private:
    ChangeCounts& m_counts;
};

// The browsers' stores.

class CountingUrlCache final : public platform::ProxyUrlCache {
public:
    CountingUrlCache(platform::UrlCache& real, ChangeCounts& counts)
        : ProxyUrlCache(real), m_counts(counts) {}

    bool deleteEntry(const std::string& url, platform::Remover& remover) override {
        const bool deleted = real().deleteEntry(url, remover);
        if (deleted)
            ++m_counts.cacheEntriesDeleted;
        return deleted;
    }
    // Files without a readable key are no entries of the list: they are counted on their own.
    std::size_t deleteUnlisted(platform::Remover& remover) override {
        const std::size_t removed = real().deleteUnlisted(remover);
        m_counts.otherCacheItemsDeleted += removed;
        return removed;
    }

private:
    ChangeCounts& m_counts;
};

class CountingUrlHistory final : public platform::ProxyUrlHistory {
public:
    CountingUrlHistory(platform::UrlHistory& real, ChangeCounts& counts)
        : ProxyUrlHistory(real), m_counts(counts) {}

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override {
        const bool added = real().addUrl(url, title, flags);
        if (added)
            ++m_counts.historyEntriesAdded;
        return added;
    }
    bool deleteUrl(const std::string& url, std::uint32_t flags, platform::Remover& remover) override {
        const bool deleted = real().deleteUrl(url, flags, remover);
        if (deleted)
            ++m_counts.historyEntriesDeleted;
        return deleted;
    }
    bool clearHistory(platform::Remover& remover) override {
        // Counted once before and once after: the store says nothing of how much it held.
        const std::uint64_t before = entries();
        const bool cleared = real().clearHistory(remover);
        m_counts.historyEntriesDeleted += before - std::min(before, entries());
        return cleared;
    }

private:
    /// The addresses the store holds: one held by two browsers is one entry.
    std::uint64_t entries() {
        std::unordered_set<std::string> addresses;
        if (auto all = real().enumUrls()) {
            platform::StatUrl record;
            while (all->next(record) == 1)
                addresses.insert(std::move(record.pwcsUrl));
        }
        return addresses.size();
    }

    ChangeCounts& m_counts;
};

} // namespace

struct CountingPlatform::Facilities {
    Facilities(platform::Platform& real, ChangeCounts& counts)
        : files(real.fileSystem(), counts), rawFiles(real.rawFiles(), counts),
          registry(real.registry(), counts), recycleBin(real.recycleBin(), counts),
          urlCache(real.urlCache(), counts), urlHistory(real.urlHistory(), counts) {}

    CountingFileSystem files;
    CountingRawFiles rawFiles;
    CountingRegistry registry;
    CountingRecycleBin recycleBin;
    CountingUrlCache urlCache;
    CountingUrlHistory urlHistory;
};

CountingPlatform::CountingPlatform(platform::Platform& real)
    : ProxyPlatform(real), m_facilities(std::make_unique<Facilities>(real, m_counts)) {}

CountingPlatform::~CountingPlatform() = default;

ChangeCounts CountingPlatform::counts() const {
    return m_counts;
}

platform::RawFiles& CountingPlatform::rawFiles() { return m_facilities->rawFiles; }
platform::FileSystem& CountingPlatform::fileSystem() { return m_facilities->files; }
platform::Registry& CountingPlatform::registry() { return m_facilities->registry; }
platform::UrlCache& CountingPlatform::urlCache() { return m_facilities->urlCache; }
platform::UrlHistory& CountingPlatform::urlHistory() { return m_facilities->urlHistory; }
platform::RecycleBin& CountingPlatform::recycleBin() { return m_facilities->recycleBin; }

} // namespace cli
