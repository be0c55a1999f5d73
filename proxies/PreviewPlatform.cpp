#include "proxies/PreviewPlatform.h"

#include "platform/Folder.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
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

/// Why a raw open is refused.
enum OpenRefusal { Missing, Taken, NotAFile, OtherNames };

/// The error code the system's own open gives for `why`.
int errorCode(OpenRefusal why) {
#ifdef _WIN32
    // ERROR_FILE_NOT_FOUND, ERROR_FILE_EXISTS, ERROR_DIRECTORY, ERROR_TOO_MANY_LINKS
    constexpr int codes[] = {2, 80, 267, 1142};
#else
    constexpr int codes[] = {ENOENT, EEXIST, EINVAL, EMLINK};
#endif
    return codes[why];
}

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
        const auto n = m_reader->read(
            buffer, std::min<std::size_t>(count, static_cast<std::size_t>(m_size - m_position)));
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

class PreviewRawFiles final : public ProxyRawFiles {
public:
    PreviewRawFiles(RawFiles& real, FileSystem& files, Journal& journal)
        : ProxyRawFiles(real), m_files(files), m_journal(journal) {}

    std::unique_ptr<RawFile> open(const std::string& path) override {
        const auto fi = m_files.info(path);
        if (fi && (!fi->isRegular || fi->links > 1))
            return refuse(fi->isRegular ? OtherNames : NotAFile);
        if (!fi)
            m_journal.add(Kind::CreateFile, path);
        return std::make_unique<PreviewRawFile>(m_journal, path, fi ? real().openForReading(path) : nullptr);
    }
    std::unique_ptr<RawFile> openForReading(const std::string& path) override {
        return m_files.info(path) ? real().openForReading(path) : nullptr;
    }
    std::unique_ptr<RawFile> refuse(OpenRefusal why) {
        setLastError(errorCode(why));
        return nullptr;
    }

private:
    FileSystem& m_files;
    Journal& m_journal;
};

class PreviewFileSystem final : public ProxyFileSystem {
public:
    PreviewFileSystem(FileSystem& real, Journal& journal) : ProxyFileSystem(real), m_journal(journal) {}
    /// The raw files that the folders' files open through.
    void attach(PreviewRawFiles& raw) { m_raw = &raw; }
    PreviewRawFiles& raw() { return *m_raw; }
    bool removed(const std::string& path) const {
        return !m_journal.removedPaths.empty() && m_journal.removedPaths.count(path) > 0;
    }

    bool list(const std::string& dir, const std::string& pattern,
              const std::function<bool(const FileInfo&)>& visit) override {
        return real().list(dir, pattern,
                           [&](const FileInfo& fi) { return removed(join(dir, fi.name)) || visit(fi); });
    }
    bool names(const std::string& dir,
               const std::function<bool(const std::string&, EntryKind)>& visit) override {
        return real().names(dir, [&](const std::string& name, EntryKind kind) {
            return removed(join(dir, name)) || visit(name, kind);
        });
    }
    std::optional<FileInfo> info(const std::string& path) override {
        return removed(path) ? std::nullopt : real().info(path);
    }
    std::unique_ptr<Folder> openFolder(const std::string& path) override;
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
    /// What a folder's setMarks would do to `path`.
    bool setMarks(const std::string& path) {
        if (!info(path))
            return false;
        m_journal.add(Kind::SetMarks, path);
        return true;
    }

private:
    Journal& m_journal;
    PreviewRawFiles* m_raw = nullptr;
};

// An open folder of the preview: the real folder's answers, less what the preview has "removed",
// with every change made by the preview's own path-based calls, which only record.
class PreviewFolder final : public ProxyFolder {
public:
    PreviewFolder(PreviewFileSystem& files, std::unique_ptr<Folder> real)
        : ProxyFolder(std::move(real)), m_files(files) {}

    bool list(const std::function<bool(const FileInfo&)>& visit) override {
        return real().list([&](const FileInfo& fi) { return m_files.removed(full(fi.name)) || visit(fi); });
    }
    bool names(const std::function<bool(const std::string&, EntryKind)>& visit) override {
        return real().names([&](const std::string& name, EntryKind kind) {
            return m_files.removed(full(name)) || visit(name, kind);
        });
    }
    std::optional<FileInfo> entry(const std::string& name) override {
        return m_files.removed(full(name)) ? std::nullopt : real().entry(name);
    }
    std::unique_ptr<Folder> openFolder(const std::string& name) override {
        auto folder = m_files.removed(full(name)) ? nullptr : real().openFolder(name);
        return folder ? std::make_unique<PreviewFolder>(m_files, std::move(folder)) : nullptr;
    }
    using Folder::openFile;
    std::unique_ptr<RawFile> openFile(const std::string& name, Create create) override {
        const bool there = entry(name).has_value();
        if (create == Create::Never && !there)
            return m_files.raw().refuse(Missing);
        if (create == Create::Exclusive && there)
            return m_files.raw().refuse(Taken);
        return m_files.raw().open(full(name));
    }
    std::unique_ptr<RawFile> openForOverwrite(const std::string& name, Refusal& why) override {
        // The checks every system shares, made through this folder's own calls, which only record.
        return Folder::openForOverwrite(name, why);
    }
    std::unique_ptr<RawFile> openStream(const std::string& name, const std::string& stream) override {
        return m_files.raw().open(full(name) + ":" + stream); // recorded, never written
    }
    bool removeFile(const std::string& name) override { return m_files.removeFile(full(name)); }
    bool removeFolder(const std::string& name) override { return m_files.removeDirectory(full(name)); }
    bool makeNormal(const std::string& name) override { return m_files.makeNormal(full(name)); }
    bool setMarks(const std::string& name, std::uint32_t) override { return m_files.setMarks(full(name)); }

private:
    std::string full(const std::string& name) const { return m_files.join(path(), name); }

    PreviewFileSystem& m_files;
};

std::unique_ptr<Folder> PreviewFileSystem::openFolder(const std::string& path) {
    auto folder = removed(path) ? nullptr : real().openFolder(path);
    return folder ? std::make_unique<PreviewFolder>(*this, std::move(folder)) : nullptr;
}

class PreviewRegistry final : public ProxyRegistry {
public:
    PreviewRegistry(Registry& real, Journal& journal) : ProxyRegistry(real), m_journal(journal) {}

    long openKey(RegKey root, const std::string& subKey, RegKey& result) override {
        const long rc = real().openKey(root, subKey, result);
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
        return real().queryValue(key, name, type, data, size);
    }
    long setValue(RegKey key, const std::string& name, std::uint32_t, const std::uint8_t*,
                  std::uint32_t) override {
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
        return real().closeKey(key);
    }
    long valueNames(RegKey key, std::vector<std::string>& names) override {
        const long rc = real().valueNames(key, names);
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

    Journal& m_journal;
    std::map<RegKey, std::string> m_paths; ///< open keys and their paths below HKEY_CURRENT_USER
};

// Blocks of working memory pass through: reading the cache's entries through the preview needs
// them, and they are this process's own. What reaches beyond it is only recorded: filling memory
// whole (a memory wipe) and the standing the system gives the process when memory runs out.
class PreviewVirtualMemory final : public ProxyVirtualMemory {
public:
    PreviewVirtualMemory(VirtualMemory& real, Journal& journal)
        : ProxyVirtualMemory(real), m_journal(journal) {}

    void* commitLarge(std::size_t size) override {
        m_journal.add(Kind::FillMemory, {}, {}, size);
        return nullptr;
    }
    bool setOutOfMemoryScore(int score) override {
        m_journal.add(Kind::SetOutOfMemoryScore, {}, std::to_string(score));
        return true;
    }

private:
    Journal& m_journal;
};

class PreviewShell final : public ProxyShell {
public:
    PreviewShell(Shell& real, Journal& journal) : ProxyShell(real), m_journal(journal) {}
    bool open(const std::string& target) override {
        m_journal.add(Kind::OpenTarget, target);
        return true;
    }
    bool startProgram(const std::string& program) override {
        m_journal.add(Kind::StartProgram, program);
        return true;
    }

private:
    Journal& m_journal;
};

class PreviewRecycleBin final : public ProxyRecycleBin {
public:
    PreviewRecycleBin(RecycleBin& real, Journal& journal) : ProxyRecycleBin(real), m_journal(journal) {}
    bool empty(const std::string& root, unsigned, RecycleBinUi&) override {
        m_journal.add(Kind::EmptyRecycleBin, root); // a preview never asks and never shows progress
        return true;
    }
    bool clearRecentDocuments(Remover&) override {
        m_journal.add(Kind::ClearRecentDocuments, {});
        return true;
    }

private:
    Journal& m_journal;
};

// The browsers' stores.

class PreviewUrlCache final : public ProxyUrlCache {
public:
    PreviewUrlCache(UrlCache& real, Journal& journal) : ProxyUrlCache(real), m_journal(journal) {}
    bool deleteEntry(const std::string& url, Remover&) override {
        m_journal.add(Kind::DeleteCacheEntry, url);
        return true;
    }
    std::size_t deleteUnlisted(Remover&) override {
        m_journal.add(Kind::DeleteUnlistedCache, {});
        return 0; // what it would find is not listed: a preview names entries only
    }

private:
    Journal& m_journal;
};

class PreviewUrlHistory final : public ProxyUrlHistory {
public:
    PreviewUrlHistory(UrlHistory& real, Journal& journal) : ProxyUrlHistory(real), m_journal(journal) {}
    bool addUrl(const std::string& url, const std::string& title, std::uint32_t) override {
        m_journal.add(Kind::AddHistory, url, title);
        return true;
    }
    bool deleteUrl(const std::string& url, std::uint32_t, Remover&) override {
        m_journal.add(Kind::DeleteHistory, url);
        return true;
    }
    bool clearHistory(Remover&) override {
        m_journal.add(Kind::ClearHistory, {});
        return true;
    }

private:
    Journal& m_journal;
};

} // namespace

struct PreviewPlatform::Facilities {
    explicit Facilities(Platform& real)
        : files(real.fileSystem(), journal), rawFiles(real.rawFiles(), files, journal),
          registry(real.registry(), journal), memory(real.virtualMemory(), journal),
          shell(real.shell(), journal), urlCache(real.urlCache(), journal),
          urlHistory(real.urlHistory(), journal), recycleBin(real.recycleBin(), journal) {
        files.attach(rawFiles);
    }

    Journal journal;
    PreviewFileSystem files;
    PreviewRawFiles rawFiles;
    PreviewRegistry registry;
    PreviewVirtualMemory memory;
    PreviewShell shell;
    PreviewUrlCache urlCache;
    PreviewUrlHistory urlHistory;
    PreviewRecycleBin recycleBin;
};

PreviewPlatform::PreviewPlatform(Platform& real)
    : ProxyPlatform(real), m_facilities(std::make_unique<Facilities>(real)) {}
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
VirtualMemory& PreviewPlatform::virtualMemory() { return m_facilities->memory; }
Shell& PreviewPlatform::shell() { return m_facilities->shell; }
UrlCache& PreviewPlatform::urlCache() { return m_facilities->urlCache; }
UrlHistory& PreviewPlatform::urlHistory() { return m_facilities->urlHistory; }
RecycleBin& PreviewPlatform::recycleBin() { return m_facilities->recycleBin; }

} // namespace platform
