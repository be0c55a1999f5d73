#include "platform/PreviewPlatform.h"

#include "platform/Folder.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace platform {
namespace {

using Kind = Change::Kind;

/// The record every facility of one preview writes into.
struct Journal {
    std::vector<Change> changes;
    std::set<std::string> removedPaths;
    std::set<std::string> deletedValues; ///< key path and value name, folded to lower case

    void add(Kind kind, std::string target, std::string detail = {}, std::uint64_t bytes = 0) {
        changes.push_back({kind, std::move(target), std::move(detail), bytes});
    }
    static std::string valueId(const std::string& key, const std::string& name) {
        std::string id = key + '\n' + name;
        std::transform(id.begin(), id.end(), id.begin(), [](unsigned char c) { return std::tolower(c); });
        return id;
    }
};

// A raw handle that reads the real file (when there is one) and only counts what it would write.
class PreviewRawFile final : public RawFile {
public:
    PreviewRawFile(Journal& journal, std::string path, std::unique_ptr<RawFile> reader)
        : m_journal(journal), m_path(std::move(path)), m_reader(std::move(reader)) {
        if (m_reader)
            m_size = std::max<std::int64_t>(0, m_reader->seek(0, From::End));
    }

    std::size_t read(void* buffer, std::size_t count) override {
        if (!m_reader || m_position >= m_size)
            return 0;
        m_reader->seek(m_position, From::Begin);
        const auto n = m_reader->read(buffer, std::min<std::size_t>(count, static_cast<std::size_t>(m_size - m_position)));
        m_position += static_cast<std::int64_t>(n);
        return n;
    }
    std::size_t write(const void*, std::size_t count) override {
        if (!m_writes) {
            m_journal.add(Kind::WriteFile, m_path);
            m_writes = m_journal.changes.size(); // one entry per open, however many writes follow
        }
        m_journal.changes[m_writes - 1].bytes += count;
        m_position += static_cast<std::int64_t>(count);
        m_size = std::max(m_size, m_position);
        return count;
    }
    std::int64_t seek(std::int64_t distance, From from) override {
        const std::int64_t base = from == From::Begin ? 0 : from == From::Current ? m_position : m_size;
        if (base + distance < 0)
            return -1;
        m_position = base + distance;
        return m_position;
    }
    bool flush() override { return true; }
    bool truncate() override {
        m_journal.add(Kind::TruncateFile, m_path, {}, static_cast<std::uint64_t>(m_position));
        m_size = m_position;
        return true;
    }
    std::intptr_t nativeHandle() const override { return m_reader ? m_reader->nativeHandle() : -1; }
    std::optional<FileInfo> info() const override {
        auto fi = m_reader ? m_reader->info() : std::optional<FileInfo>(FileInfo{});
        if (fi) {
            fi->isRegular = true;
            fi->size = static_cast<std::uint64_t>(m_size);
        }
        return fi;
    }
    bool openElsewhere() const override { return m_reader && m_reader->openElsewhere(); }

private:
    Journal& m_journal;
    std::string m_path;
    std::unique_ptr<RawFile> m_reader;
    std::int64_t m_position = 0;
    std::int64_t m_size = 0;
    std::size_t m_writes = 0; ///< 1 + the index of this open's WriteFile entry; 0 before the first write
};

class PreviewFileSystem final : public FileSystem {
public:
    PreviewFileSystem(FileSystem& real, Journal& journal) : m_real(real), m_journal(journal) {}
    /// The raw files that the folders' files open through.
    void attach(RawFiles& raw) { m_raw = &raw; }
    std::unique_ptr<Folder> openFolder(const std::string& path) override;
    std::string joined(const std::string& dir, const std::string& name) const {
        const char sep = m_real.separator();
        return dir.empty() || dir.back() == sep ? dir + name : dir + sep + name;
    }
    RawFiles& raw() { return *m_raw; }

    bool list(const std::string& dir, const std::string& pattern,
              const std::function<bool(const FileInfo&)>& visit) override {
        return m_real.list(dir, pattern, [&](const FileInfo& fi) { return gone(dir, fi.name) || visit(fi); });
    }
    bool names(const std::string& dir, const std::function<bool(const std::string&, EntryKind)>& visit) override {
        return m_real.names(dir, [&](const std::string& name, EntryKind kind) {
            return gone(dir, name) || visit(name, kind);
        });
    }
    bool matches(const std::string& name, const std::string& pattern) const override {
        return m_real.matches(name, pattern);
    }
    std::optional<FileInfo> info(const std::string& path) override {
        if (m_journal.removedPaths.count(path))
            return std::nullopt;
        return m_real.info(path);
    }
    bool removeFile(const std::string& path) override {
        const auto fi = info(path);
        if (!fi)
            return true; // already gone, as the real call says
        if (fi->isDirectory() && !fi->isLink())
            return false;
        m_journal.add(Kind::RemoveFile, path);
        m_journal.removedPaths.insert(path);
        return true;
    }
    bool removeDirectory(const std::string& path) override {
        const auto fi = info(path);
        if (!fi)
            return true;
        if (!fi->isDirectory() || fi->isLink())
            return false;
        bool empty = true;
        names(path, [&](const std::string&, EntryKind) { return empty = false; });
        if (!empty)
            return false;
        m_journal.add(Kind::RemoveDirectory, path);
        m_journal.removedPaths.insert(path);
        return true;
    }
    bool createDirectory(const std::string& path) override {
        if (info(path))
            return false;
        m_journal.add(Kind::CreateDirectory, path);
        return true;
    }
    bool makeNormal(const std::string& path) override {
        if (!info(path))
            return false;
        m_journal.add(Kind::MakeNormal, path);
        return true;
    }
    bool isInUse(const std::string& path) override { return m_real.isInUse(path); }
    char separator() const override { return m_real.separator(); }

private:
    bool gone(const std::string& dir, const std::string& name) const {
        return !m_journal.removedPaths.empty() && m_journal.removedPaths.count(joined(dir, name)) > 0;
    }

    FileSystem& m_real;
    Journal& m_journal;
    RawFiles* m_raw = nullptr;
};

// An open folder of the preview: the same answers, reached through the preview's own path-based
// calls, so that what the preview has "removed" stays removed and changes are only recorded.
class PreviewFolder final : public Folder {
public:
    PreviewFolder(PreviewFileSystem& files, std::string path, FileInfo self)
        : m_files(files), m_path(std::move(path)), m_self(std::move(self)) {}

    const std::string& path() const override { return m_path; }
    FileInfo self() const override { return m_self; }
    bool list(const std::function<bool(const FileInfo&)>& visit) override { return m_files.list(m_path, "*", visit); }
    std::optional<FileInfo> entry(const std::string& name) override { return m_files.info(full(name)); }
    std::unique_ptr<Folder> openFolder(const std::string& name) override { return m_files.openFolder(full(name)); }
    using Folder::openFile;
    std::unique_ptr<RawFile> openFile(const std::string& name, Create create) override {
        const bool there = entry(name).has_value();
        if ((create == Create::Never && !there) || (create == Create::Exclusive && there)) {
#ifdef _WIN32
            constexpr int Taken = 80; // ERROR_FILE_EXISTS
#else
            constexpr int Taken = 17; // EEXIST
#endif
            m_files.raw().setLastError(there ? Taken : 2); // as the real call says
            return nullptr;
        }
        return m_files.raw().open(full(name));
    }
    bool isInUse(const std::string& name) override { return m_files.isInUse(full(name)); }
    bool removeFile(const std::string& name) override { return m_files.removeFile(full(name)); }
    bool removeFolder(const std::string& name) override { return m_files.removeDirectory(full(name)); }
    bool makeNormal(const std::string& name) override { return m_files.makeNormal(full(name)); }

private:
    std::string full(const std::string& name) const { return m_files.joined(m_path, name); }

    PreviewFileSystem& m_files;
    std::string m_path;
    FileInfo m_self;
};

std::unique_ptr<Folder> PreviewFileSystem::openFolder(const std::string& path) {
    const auto fi = info(path);
    if (!fi || !fi->isDirectory() || fi->isLink())
        return nullptr;
    return std::make_unique<PreviewFolder>(*this, path, *fi);
}

class PreviewRawFiles final : public RawFiles {
public:
    PreviewRawFiles(RawFiles& real, FileSystem& files, Journal& journal)
        : m_real(real), m_files(files), m_journal(journal) {}

    std::unique_ptr<RawFile> open(const std::string& path) override {
        const auto fi = m_files.info(path);
        if (fi && !fi->isRegular) {
            m_real.setLastError(22); // only plain files open, as the real call says
            return nullptr;
        }
        if (fi && fi->links > 1) {
            m_real.setLastError(31); // nor files with other names
            return nullptr;
        }
        if (!fi)
            m_journal.add(Kind::CreateFile, path);
        return std::make_unique<PreviewRawFile>(m_journal, path, fi ? m_real.openForReading(path) : nullptr);
    }
    std::unique_ptr<RawFile> openForReading(const std::string& path) override {
        return m_files.info(path) ? m_real.openForReading(path) : nullptr;
    }
    int lastError() const override { return m_real.lastError(); }
    void setLastError(int code) override { m_real.setLastError(code); }
    std::string errorText(int code) const override { return m_real.errorText(code); }

private:
    RawFiles& m_real;
    FileSystem& m_files;
    Journal& m_journal;
};

class PreviewRegistry final : public Registry {
public:
    PreviewRegistry(Registry& real, Journal& journal) : m_real(real), m_journal(journal) {}

    long openKey(RegKey root, const std::string& subKey, RegKey& result) override {
        const long rc = m_real.openKey(root, subKey, result);
        if (rc == RegResult::Success)
            m_paths[result] = below(root, subKey);
        return rc;
    }
    long createKey(RegKey root, const std::string& subKey, RegKey& result) override {
        const long rc = openKey(root, subKey, result);
        if (rc == RegResult::FileNotFound)
            m_journal.add(Kind::CreateKey, below(root, subKey));
        return rc;
    }
    long queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override {
        if (m_journal.deletedValues.count(Journal::valueId(pathOf(key), name)))
            return RegResult::FileNotFound;
        return m_real.queryValue(key, name, type, data, size);
    }
    long setValue(RegKey key, const std::string& name, std::uint32_t, const std::uint8_t*, std::uint32_t) override {
        m_journal.add(Kind::SetValue, pathOf(key), name);
        return RegResult::Success;
    }
    long deleteValue(RegKey key, const std::string& name) override {
        std::uint32_t type = 0, size = 0;
        const long rc = queryValue(key, name, &type, nullptr, &size);
        if (rc != RegResult::Success)
            return rc;
        m_journal.add(Kind::DeleteValue, pathOf(key), name);
        m_journal.deletedValues.insert(Journal::valueId(pathOf(key), name));
        return RegResult::Success;
    }
    long closeKey(RegKey key) override {
        m_paths.erase(key);
        return m_real.closeKey(key);
    }
    long valueNames(RegKey key, std::vector<std::string>& names) override {
        const long rc = m_real.valueNames(key, names);
        std::erase_if(names, [&](const std::string& n) {
            return m_journal.deletedValues.count(Journal::valueId(pathOf(key), n)) > 0;
        });
        return rc;
    }

private:
    std::string pathOf(RegKey key) const {
        const auto it = m_paths.find(key);
        return it == m_paths.end() ? std::string() : it->second;
    }
    std::string below(RegKey root, const std::string& subKey) const {
        const std::string parent = root == CurrentUserRoot ? std::string() : pathOf(root);
        return parent.empty() ? subKey : subKey.empty() ? parent : parent + "\\" + subKey;
    }

    Registry& m_real;
    Journal& m_journal;
    std::map<RegKey, std::string> m_paths; ///< open keys and their paths below HKEY_CURRENT_USER
};

class PreviewShell final : public Shell {
public:
    PreviewShell(Shell& real, Journal& journal) : m_real(real), m_journal(journal) {}
    bool open(const std::string& target) override {
        m_journal.add(Kind::OpenTarget, target);
        return true;
    }
    bool startProgram(const std::string& program) override {
        m_journal.add(Kind::StartProgram, program);
        return true;
    }
    std::string executableName(const std::string& base) const override { return m_real.executableName(base); }

private:
    Shell& m_real;
    Journal& m_journal;
};

class PreviewUrlCache final : public UrlCache {
public:
    PreviewUrlCache(UrlCache& real, Journal& journal) : m_real(real), m_journal(journal) {}
    UrlCacheEnum findFirst(void* buffer, std::uint32_t& size) override { return m_real.findFirst(buffer, size); }
    bool findNext(UrlCacheEnum e, void* buffer, std::uint32_t& size) override { return m_real.findNext(e, buffer, size); }
    void findClose(UrlCacheEnum e) override { m_real.findClose(e); }
    bool deleteEntry(const std::string& url, Remover&) override {
        m_journal.add(Kind::DeleteCacheEntry, url);
        return true;
    }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

private:
    UrlCache& m_real;
    Journal& m_journal;
};

class PreviewUrlHistory final : public UrlHistory {
public:
    PreviewUrlHistory(UrlHistory& real, Journal& journal) : m_real(real), m_journal(journal) {}
    bool addUrl(const std::string& url, const std::string& title, std::uint32_t) override {
        m_journal.add(Kind::AddHistory, url, title);
        return true;
    }
    bool deleteUrl(const std::string& url, std::uint32_t, Remover&) override {
        m_journal.add(Kind::DeleteHistory, url);
        return true;
    }
    std::unique_ptr<UrlHistoryEnum> enumUrls() override { return m_real.enumUrls(); }
    bool clearHistory(Remover&) override {
        m_journal.add(Kind::ClearHistory, {});
        return true;
    }
    std::vector<std::string> storesInUse() const override { return m_real.storesInUse(); }
    std::vector<StoreProblem> storeProblems() const override { return m_real.storeProblems(); }

private:
    UrlHistory& m_real;
    Journal& m_journal;
};

class PreviewRecycleBin final : public RecycleBin {
public:
    PreviewRecycleBin(RecycleBin& real, Journal& journal) : m_real(real), m_journal(journal) {}
    std::vector<TrashItem> items(const std::string& root) override { return m_real.items(root); }
    bool empty(const std::string& root, unsigned, RecycleBinUi&) override {
        m_journal.add(Kind::EmptyRecycleBin, root); // a preview never asks and never shows progress
        return true;
    }
    std::vector<std::string> recentDocuments() override { return m_real.recentDocuments(); }
    std::vector<RefusedRecord> takeRefused() override { return m_real.takeRefused(); }
    bool clearRecentDocuments(Remover&) override {
        m_journal.add(Kind::ClearRecentDocuments, {});
        return true;
    }

private:
    RecycleBin& m_real;
    Journal& m_journal;
};

} // namespace

struct PreviewPlatform::Facilities {
    explicit Facilities(Platform& real)
        : files(real.fileSystem(), journal), rawFiles(real.rawFiles(), files, journal),
          registry(real.registry(), journal), shell(real.shell(), journal), urlCache(real.urlCache(), journal),
          urlHistory(real.urlHistory(), journal), recycleBin(real.recycleBin(), journal) {
        files.attach(rawFiles);
    }

    Journal journal;
    PreviewFileSystem files;
    PreviewRawFiles rawFiles;
    PreviewRegistry registry;
    PreviewShell shell;
    PreviewUrlCache urlCache;
    PreviewUrlHistory urlHistory;
    PreviewRecycleBin recycleBin;
};

PreviewPlatform::PreviewPlatform(Platform& real) : m_real(real), m_facilities(std::make_unique<Facilities>(real)) {}
PreviewPlatform::~PreviewPlatform() = default;

const std::vector<Change>& PreviewPlatform::changes() const {
    return m_facilities->journal.changes;
}

std::vector<Change> PreviewPlatform::changes(Change::Kind kind) const {
    std::vector<Change> out;
    for (const Change& c : changes())
        if (c.kind == kind)
            out.push_back(c);
    return out;
}

RawFiles& PreviewPlatform::rawFiles() { return m_facilities->rawFiles; }
FileSystem& PreviewPlatform::fileSystem() { return m_facilities->files; }
Registry& PreviewPlatform::registry() { return m_facilities->registry; }
Shell& PreviewPlatform::shell() { return m_facilities->shell; }
UrlCache& PreviewPlatform::urlCache() { return m_facilities->urlCache; }
UrlHistory& PreviewPlatform::urlHistory() { return m_facilities->urlHistory; }
RecycleBin& PreviewPlatform::recycleBin() { return m_facilities->recycleBin; }
// These only read the machine (or, for process memory, touch nothing but this process).
Drives& PreviewPlatform::drives() { return m_real.drives(); }
KnownFolders& PreviewPlatform::knownFolders() { return m_real.knownFolders(); }
Processes& PreviewPlatform::processes() { return m_real.processes(); }
MemoryStatus& PreviewPlatform::memoryStatus() { return m_real.memoryStatus(); }
VirtualMemory& PreviewPlatform::virtualMemory() { return m_real.virtualMemory(); }
Connectivity& PreviewPlatform::connectivity() { return m_real.connectivity(); }

} // namespace platform
