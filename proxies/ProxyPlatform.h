#pragma once
// A platform that hands every call to another one. Each facility has a forwarding class here that
// passes each of its calls on unchanged; a wrapper (the preview, the command line's counting
// platform) derives from the ones it needs and overrides only the calls it changes, so that a call
// added to a facility reaches the wrapper's platform at once instead of being forgotten in one copy
// of the forwarding. Folders and raw files a forwarding call opens are the underlying platform's
// own: a wrapper that must see the calls made on them wraps them in its override of the opening call.

#include "platform/Platform.h"

#include <memory>

namespace platform {

class ProxyRawFile : public RawFile {
public:
    explicit ProxyRawFile(std::unique_ptr<RawFile> real) : m_real(std::move(real)) {}

    std::size_t read(void* buffer, std::size_t count) override { return m_real->read(buffer, count); }
    std::size_t write(const void* data, std::size_t count) override { return m_real->write(data, count); }
    std::int64_t seek(std::int64_t distance, From from) override { return m_real->seek(distance, from); }
    bool flush() override { return m_real->flush(); }
    void startFlush(std::int64_t offset, std::int64_t length) override { m_real->startFlush(offset, length); }
    bool truncate() override { return m_real->truncate(); }
    std::intptr_t nativeHandle() const override { return m_real->nativeHandle(); }
    std::optional<FileInfo> info() const override { return m_real->info(); }
    bool openElsewhere() const override { return m_real->openElsewhere(); }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> dataRanges() const override {
        return m_real->dataRanges();
    }
    std::unique_ptr<RawFile> openUncached() const override { return m_real->openUncached(); }
    std::size_t readAlignment() const override { return m_real->readAlignment(); }

protected:
    RawFile& real() const { return *m_real; }

private:
    std::unique_ptr<RawFile> m_real;
};

class ProxyFolder : public Folder {
public:
    explicit ProxyFolder(std::unique_ptr<Folder> real) : m_real(std::move(real)) {}

    const std::string& path() const override { return m_real->path(); }
    FileInfo self() const override { return m_real->self(); }
    bool list(const std::function<bool(const FileInfo&)>& visit) override { return m_real->list(visit); }
    bool names(const std::function<bool(const std::string&, EntryKind)>& visit) override {
        return m_real->names(visit);
    }
    std::optional<FileInfo> entry(const std::string& name) override { return m_real->entry(name); }
    std::unique_ptr<Folder> openFolder(const std::string& name) override { return m_real->openFolder(name); }
    using Folder::openFile;
    std::unique_ptr<RawFile> openFile(const std::string& name, Create create) override {
        return m_real->openFile(name, create);
    }
    std::unique_ptr<RawFile> openForOverwrite(const std::string& name, Refusal& why) override {
        return m_real->openForOverwrite(name, why);
    }
    bool isInUse(const std::string& name) override { return m_real->isInUse(name); }
    std::vector<std::string> extraStreams(const std::string& name) override { return m_real->extraStreams(name); }
    std::unique_ptr<RawFile> openStream(const std::string& name, const std::string& stream) override {
        return m_real->openStream(name, stream);
    }
    bool removeFile(const std::string& name) override { return m_real->removeFile(name); }
    bool removeFolder(const std::string& name) override { return m_real->removeFolder(name); }
    bool makeNormal(const std::string& name) override { return m_real->makeNormal(name); }
    bool setMarks(const std::string& name, std::uint32_t attributes) override { return m_real->setMarks(name, attributes); }
    std::intptr_t nativeHandle() const override { return m_real->nativeHandle(); }

protected:
    Folder& real() const { return *m_real; }

private:
    std::unique_ptr<Folder> m_real;
};

class ProxyRawFiles : public RawFiles {
public:
    explicit ProxyRawFiles(RawFiles& real) : m_real(real) {}

    std::unique_ptr<RawFile> open(const std::string& path) override { return m_real.open(path); }
    std::unique_ptr<RawFile> openForReading(const std::string& path) override {
        return m_real.openForReading(path);
    }
    int lastError() const override { return m_real.lastError(); }
    void setLastError(int code) override { m_real.setLastError(code); }
    std::string errorText(int code) const override { return m_real.errorText(code); }

protected:
    RawFiles& real() const { return m_real; }

private:
    RawFiles& m_real;
};

class ProxyFileSystem : public FileSystem {
public:
    explicit ProxyFileSystem(FileSystem& real) : m_real(real) {}

    bool list(const std::string& dir, const std::string& pattern,
              const std::function<bool(const FileInfo&)>& visit) override {
        return m_real.list(dir, pattern, visit);
    }
    bool names(const std::string& dir,
               const std::function<bool(const std::string&, EntryKind)>& visit) override {
        return m_real.names(dir, visit);
    }
    bool matches(const std::string& name, const std::string& pattern) const override {
        return m_real.matches(name, pattern);
    }
    std::optional<FileInfo> info(const std::string& path) override { return m_real.info(path); }
    std::unique_ptr<Folder> openFolder(const std::string& path) override { return m_real.openFolder(path); }
    bool removeFile(const std::string& path) override { return m_real.removeFile(path); }
    bool removeDirectory(const std::string& path) override { return m_real.removeDirectory(path); }
    bool createDirectory(const std::string& path) override { return m_real.createDirectory(path); }
    bool makeNormal(const std::string& path) override { return m_real.makeNormal(path); }
    bool isInUse(const std::string& path) override { return m_real.isInUse(path); }
    char separator() const override { return m_real.separator(); }

protected:
    FileSystem& real() const { return m_real; }

private:
    FileSystem& m_real;
};

class ProxyDrives : public Drives {
public:
    explicit ProxyDrives(Drives& real) : m_real(real) {}

    std::vector<std::string> roots() override { return m_real.roots(); }
    std::string rootOf(const std::string& path) override { return m_real.rootOf(path); }
    DriveType type(const std::string& path) override { return m_real.type(path); }
    bool space(const std::string& path, DiskSpace& out) override { return m_real.space(path, out); }
    DriveType typeOf(const Folder& folder) override { return m_real.typeOf(folder); }
    bool spaceOf(const Folder& folder, DiskSpace& out) override { return m_real.spaceOf(folder, out); }
    std::string fileSystemOf(const Folder& folder) override { return m_real.fileSystemOf(folder); }
    Storage storage(const std::string& path) override { return m_real.storage(path); }
    bool isDirectory(const std::string& path) override { return m_real.isDirectory(path); }

private:
    Drives& m_real;
};

class ProxyRegistry : public Registry {
public:
    explicit ProxyRegistry(Registry& real) : m_real(real) {}

    long openKey(RegKey root, const std::string& subKey, RegKey& result) override {
        return m_real.openKey(root, subKey, result);
    }
    long createKey(RegKey root, const std::string& subKey, RegKey& result) override {
        return m_real.createKey(root, subKey, result);
    }
    long queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override {
        return m_real.queryValue(key, name, type, data, size);
    }
    long setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override {
        return m_real.setValue(key, name, type, data, size);
    }
    long deleteValue(RegKey key, const std::string& name) override { return m_real.deleteValue(key, name); }
    long closeKey(RegKey key) override { return m_real.closeKey(key); }
    long valueNames(RegKey key, std::vector<std::string>& names) override {
        return m_real.valueNames(key, names);
    }

protected:
    Registry& real() const { return m_real; }

private:
    Registry& m_real;
};

class ProxyKnownFolders : public KnownFolders {
public:
    explicit ProxyKnownFolders(KnownFolders& real) : m_real(real) {}

    std::string tempPath() override { return m_real.tempPath(); }
    std::string systemDirectory() override { return m_real.systemDirectory(); }
    std::string fromRegistryPath(const std::string& path) override { return m_real.fromRegistryPath(path); }
    std::string homePath() override { return m_real.homePath(); }
    std::vector<std::string> homePaths() override { return m_real.homePaths(); }
    std::string usersPath() override { return m_real.usersPath(); }
    std::vector<std::string> systemFolders() override { return m_real.systemFolders(); }
    RunAs runAs() override { return m_real.runAs(); }

private:
    KnownFolders& m_real;
};

class ProxyProcesses : public Processes {
public:
    explicit ProxyProcesses(Processes& real) : m_real(real) {}

    std::vector<long> ids() override { return m_real.ids(); }
    std::optional<std::string> programName(long id) override { return m_real.programName(id); }

private:
    Processes& m_real;
};

class ProxyMemoryStatus : public MemoryStatus {
public:
    explicit ProxyMemoryStatus(MemoryStatus& real) : m_real(real) {}

    bool query(MemoryStatusRecord& record) override { return m_real.query(record); }
    std::optional<MemoryLimit> limit() override { return m_real.limit(); }

private:
    MemoryStatus& m_real;
};

class ProxyVirtualMemory : public VirtualMemory {
public:
    explicit ProxyVirtualMemory(VirtualMemory& real) : m_real(real) {}

    void* commit(std::size_t size) override { return m_real.commit(size); }
    void* commitLarge(std::size_t size) override { return m_real.commitLarge(size); }
    bool lock(void* address, std::size_t size) override { return m_real.lock(address, size); }
    bool unlock(void* address, std::size_t size) override { return m_real.unlock(address, size); }
    bool decommit(void* address, std::size_t size) override { return m_real.decommit(address, size); }
    bool release(void* address) override { return m_real.release(address); }
    bool isBadRead(const void* address, std::size_t size) override { return m_real.isBadRead(address, size); }
    bool isBadWrite(void* address, std::size_t size) override { return m_real.isBadWrite(address, size); }
    bool isBadString(const char* address, std::size_t max) override {
        return m_real.isBadString(address, max);
    }
    int outOfMemoryScore() override { return m_real.outOfMemoryScore(); }
    bool setOutOfMemoryScore(int score) override { return m_real.setOutOfMemoryScore(score); }

private:
    VirtualMemory& m_real;
};

class ProxyShell : public Shell {
public:
    explicit ProxyShell(Shell& real) : m_real(real) {}

    bool open(const std::string& target) override { return m_real.open(target); }
    bool startProgram(const std::string& program) override { return m_real.startProgram(program); }
    std::string executableName(const std::string& base) const override { return m_real.executableName(base); }

private:
    Shell& m_real;
};

class ProxyConnectivity : public Connectivity {
public:
    explicit ProxyConnectivity(Connectivity& real) : m_real(real) {}

    bool connected() override { return m_real.connected(); }

private:
    Connectivity& m_real;
};

// The browsers' stores, kept together: their deleting calls are the ones most likely to change shape.

class ProxyUrlCache : public UrlCache {
public:
    explicit ProxyUrlCache(UrlCache& real) : m_real(real) {}

    UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) override {
        return m_real.findFirst(buffer, size);
    }
    bool findNext(UrlCacheEnum enumeration, void* buffer, std::uint32_t& size) override {
        return m_real.findNext(enumeration, buffer, size);
    }
    void findClose(UrlCacheEnum enumeration) override { m_real.findClose(enumeration); }
    bool deleteEntry(const std::string& url, Remover& remover) override { return m_real.deleteEntry(url, remover); }
    std::size_t deleteUnlisted(Remover& remover) override { return m_real.deleteUnlisted(remover); }
    void release() override { m_real.release(); }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

protected:
    UrlCache& real() const { return m_real; }

private:
    UrlCache& m_real;
};

class ProxyUrlHistory : public UrlHistory {
public:
    explicit ProxyUrlHistory(UrlHistory& real) : m_real(real) {}

    bool addUrl(const std::string& url, const std::string& title, std::uint32_t flags) override {
        return m_real.addUrl(url, title, flags);
    }
    bool deleteUrl(const std::string& url, std::uint32_t flags, Remover& remover) override {
        return m_real.deleteUrl(url, flags, remover);
    }
    std::unique_ptr<UrlHistoryEnum> enumUrls() override { return m_real.enumUrls(); }
    bool clearHistory(Remover& remover) override { return m_real.clearHistory(remover); }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

protected:
    UrlHistory& real() const { return m_real; }

private:
    UrlHistory& m_real;
};

class ProxyRecycleBin : public RecycleBin {
public:
    explicit ProxyRecycleBin(RecycleBin& real) : m_real(real) {}

    std::vector<TrashItem> items(const std::string& root) override { return m_real.items(root); }
    bool empty(const std::string& root, unsigned flags, RecycleBinUi& ui) override {
        return m_real.empty(root, flags, ui);
    }
    std::vector<std::string> recentDocuments() override { return m_real.recentDocuments(); }
    bool clearRecentDocuments(Remover& remover) override { return m_real.clearRecentDocuments(remover); }
    std::vector<RefusedRecord> takeRefused() override { return m_real.takeRefused(); }

protected:
    RecycleBin& real() const { return m_real; }

private:
    RecycleBin& m_real;
};

/// Every facility a forwarding one of the underlying platform. A wrapper overrides the accessors of
/// the facilities it changes, returning its own objects derived from the classes above.
class ProxyPlatform : public Platform {
public:
    /// Forwards to `real`, which must outlive this object.
    explicit ProxyPlatform(Platform& real);
    /// Forwards to `real`, which this object keeps.
    explicit ProxyPlatform(std::unique_ptr<Platform> real);
    ~ProxyPlatform() override;
    ProxyPlatform(const ProxyPlatform&) = delete;
    ProxyPlatform& operator=(const ProxyPlatform&) = delete;

    RawFiles& rawFiles() override;
    FileSystem& fileSystem() override;
    Drives& drives() override;
    Registry& registry() override;
    KnownFolders& knownFolders() override;
    Processes& processes() override;
    MemoryStatus& memoryStatus() override;
    VirtualMemory& virtualMemory() override;
    Shell& shell() override;
    Connectivity& connectivity() override;
    UrlCache& urlCache() override;
    UrlHistory& urlHistory() override;
    RecycleBin& recycleBin() override;

protected:
    /// The platform every call goes to.
    Platform& real() const { return m_real; }

private:
    struct Facilities;
    std::unique_ptr<Platform> m_owned;
    Platform& m_real;
    std::unique_ptr<Facilities> m_facilities;
};

} // namespace platform
