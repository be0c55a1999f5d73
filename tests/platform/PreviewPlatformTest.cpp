// The preview's promise: every call of every facility that could change the machine, made through
// a preview over the native platform on a scratch home (files, a user.reg hive, a trash folder, the
// recent-documents list, real browser profiles), leaves every name and byte as it was, and is
// recorded instead.

#include "proxies/PreviewPlatform.h"
#include "tests/platform/BrowserHome.h"
#include "tests/support/CachedAddresses.h"
#include "tests/support/Hive.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using platform::Change;
using Kind = platform::Change::Kind;

namespace {

/// Fails the test: `call` reached the machine through the preview.
bool tripped(const std::string& call) {
    ADD_FAILURE() << call << " went through the preview to the machine";
    return false;
}

// The native platform under the preview, with every call of every facility that could change
// anything failing the test: whatever the preview forwards may only read.
struct ReadOnlyFile final : platform::ProxyRawFile {
    using ProxyRawFile::ProxyRawFile;
    std::size_t write(const void*, std::size_t) override { return tripped("a write"), 0; }
    bool truncate() override { return tripped("a cut"); }
};

std::unique_ptr<platform::RawFile> readOnly(std::unique_ptr<platform::RawFile> file) {
    return file ? std::make_unique<ReadOnlyFile>(std::move(file)) : nullptr;
}

struct ReadOnlyFolder final : platform::ProxyFolder {
    using ProxyFolder::ProxyFolder;
    using ProxyFolder::openFile;
    static std::unique_ptr<platform::Folder> wrap(std::unique_ptr<platform::Folder> folder) {
        return folder ? std::make_unique<ReadOnlyFolder>(std::move(folder)) : nullptr;
    }
    std::unique_ptr<platform::Folder> openFolder(const std::string& name) override {
        return wrap(real().openFolder(name));
    }
    std::unique_ptr<platform::RawFile> openFile(const std::string& name, Create) override {
        return tripped("opening " + name + " for writing"), nullptr;
    }
    std::unique_ptr<platform::RawFile> openForOverwrite(const std::string& name, Refusal&) override {
        return tripped("opening " + name + " to overwrite"), nullptr;
    }
    std::unique_ptr<platform::RawFile> openStream(const std::string& name, const std::string&) override {
        return tripped("opening a stream of " + name), nullptr;
    }
    bool removeFile(const std::string& name) override { return tripped("removing " + name); }
    bool removeFolder(const std::string& name) override { return tripped("removing " + name); }
    bool makeNormal(const std::string& name) override { return tripped("making " + name + " normal"); }
    bool setMarks(const std::string& name, std::uint32_t) override { return tripped("marking " + name); }
};

struct Tripwire final : platform::ProxyPlatform {
    struct Raw final : platform::ProxyRawFiles {
        using ProxyRawFiles::ProxyRawFiles;
        std::unique_ptr<platform::RawFile> open(const std::string& path) override {
            return tripped("opening " + path + " for writing"), nullptr;
        }
        std::unique_ptr<platform::RawFile> openForReading(const std::string& path) override {
            return readOnly(real().openForReading(path));
        }
    };
    struct Files final : platform::ProxyFileSystem {
        using ProxyFileSystem::ProxyFileSystem;
        std::unique_ptr<platform::Folder> openFolder(const std::string& path) override {
            return ReadOnlyFolder::wrap(real().openFolder(path));
        }
        bool removeFile(const std::string& path) override { return tripped("removing " + path); }
        bool removeDirectory(const std::string& path) override { return tripped("removing " + path); }
        bool createDirectory(const std::string& path) override { return tripped("creating " + path); }
        bool makeNormal(const std::string& path) override { return tripped("making " + path + " normal"); }
    };
    struct Reg final : platform::ProxyRegistry {
        using ProxyRegistry::ProxyRegistry;
        long createKey(platform::RegKey, const std::string& key, platform::RegKey&) override {
            return tripped("creating key " + key), platform::RegResult::AccessDenied;
        }
        long setValue(platform::RegKey, const std::string& name, std::uint32_t, const std::uint8_t*,
                      std::uint32_t) override {
            return tripped("setting value " + name), platform::RegResult::AccessDenied;
        }
        long deleteValue(platform::RegKey, const std::string& name) override {
            return tripped("deleting value " + name), platform::RegResult::AccessDenied;
        }
    };
    struct Memory final : platform::ProxyVirtualMemory {
        using ProxyVirtualMemory::ProxyVirtualMemory;
        void* commitLarge(std::size_t) override { return tripped("filling memory"), nullptr; }
        bool lock(void*, std::size_t) override { return tripped("locking memory"); }
        bool setOutOfMemoryScore(int) override { return tripped("setting the out-of-memory score"); }
    };
    struct NoShell final : platform::ProxyShell {
        using ProxyShell::ProxyShell;
        bool open(const std::string& target) override { return tripped("opening " + target); }
        bool startProgram(const std::string& program) override { return tripped("starting " + program); }
    };
    struct Cache final : platform::ProxyUrlCache {
        using ProxyUrlCache::ProxyUrlCache;
        bool deleteEntry(const std::string& url, platform::Remover&) override { return tripped("deleting " + url); }
        std::size_t deleteUnlisted(platform::Remover&) override { return tripped("deleting the cache"), 0; }
    };
    struct History final : platform::ProxyUrlHistory {
        using ProxyUrlHistory::ProxyUrlHistory;
        bool addUrl(const std::string& url, const std::string&, std::uint32_t) override {
            return tripped("adding " + url);
        }
        bool deleteUrl(const std::string& url, std::uint32_t, platform::Remover&) override {
            return tripped("deleting " + url);
        }
        bool clearHistory(platform::Remover&) override { return tripped("clearing the history"); }
    };
    struct Bin final : platform::ProxyRecycleBin {
        using ProxyRecycleBin::ProxyRecycleBin;
        bool empty(const std::string&, unsigned, platform::RecycleBinUi&) override { return tripped("emptying the bin"); }
        bool clearRecentDocuments(platform::Remover&) override { return tripped("clearing the recent documents"); }
    };

    explicit Tripwire(std::unique_ptr<platform::Platform> native)
        : ProxyPlatform(std::move(native)), raw(real().rawFiles()), files(real().fileSystem()),
          reg(real().registry()), memory(real().virtualMemory()), shellWire(real().shell()),
          cache(real().urlCache()), history(real().urlHistory()), bin(real().recycleBin()) {}
    platform::RawFiles& rawFiles() override { return raw; }
    platform::FileSystem& fileSystem() override { return files; }
    platform::Registry& registry() override { return reg; }
    platform::VirtualMemory& virtualMemory() override { return memory; }
    platform::Shell& shell() override { return shellWire; }
    platform::UrlCache& urlCache() override { return cache; }
    platform::UrlHistory& urlHistory() override { return history; }
    platform::RecycleBin& recycleBin() override { return bin; }
    Raw raw;
    Files files;
    Reg reg;
    Memory memory;
    NoShell shellWire;
    Cache cache;
    History history;
    Bin bin;
};

// What the stores would remove or write through: a preview never hands them anything.
struct RefusingRemover final : platform::Remover {
    bool removeEntry(platform::Folder&, const std::string& name) override {
        ADD_FAILURE() << "removed " << name;
        return false;
    }
    bool rewrite(platform::Folder&, const std::string& name, const std::string&) override {
        ADD_FAILURE() << "rewrote " << name;
        return false;
    }
} refusing;

// The bin hands nothing to the caller: a preview neither asks, nor shows progress, nor removes.
struct RefusingUi final : platform::RecycleBinUi {
    bool confirmEmpty(std::size_t, std::uint64_t) override {
        ADD_FAILURE() << "asked";
        return false;
    }
    void progress(std::size_t, std::size_t) override { ADD_FAILURE() << "showed progress"; }
    platform::Remover& remover() override { return refusing; }
};

void put(const fs::path& path, const std::string& content) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

const char* const RecentList = R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0"><bookmark href="file:///home/u/plan.odt" added="2024-01-01T00:00:00Z"/></xbel>
)";

} // namespace

TEST(PreviewPlatform, ChangesNothingThroughAnyFacilityAndRecordsEveryCall) {
    testsupport::BrowserHome home; // real profiles: a cache and a history with entries
    const fs::path root = testsupport::scratchRoot();
    const fs::path files = root / "files", data = std::getenv("XDG_DATA_HOME");
    put(files / "a.txt", "aaaa");
    put(files / "sub/b.txt", "bbbb");
    fs::create_directories(files / "empty");
    fs::create_symlink(files / "a.txt", files / "link");
    put(data / "Trash/files/old.txt", "trashed");
    put(data / "Trash/info/old.txt.trashinfo",
        "[Trash Info]\nPath=/home/u/old.txt\nDeletionDate=2024-01-02T03:04:05\n");
    put(data / "recently-used.xbel", RecentList);
    testsupport::writeUserReg(std::getenv("WINEPREFIX"),
                              "\n[Software\\\\Tavi] 1700000000\n\"kept\"=\"value\"\n");

    Tripwire real(platform::createNative());
    const auto cached = testsupport::cachedAddresses(real.urlCache());
    ASSERT_FALSE(cached.empty());
    ASSERT_EQ(real.recycleBin().items("").size(), 1u);
    ASSERT_EQ(real.recycleBin().recentDocuments().size(), 1u);
    const int score = real.virtualMemory().outOfMemoryScore();
    const auto before = testsupport::treeSnapshot(root);

    platform::PreviewPlatform preview(real);
    auto& fsys = preview.fileSystem();
    const std::string dir = files.string();
    EXPECT_TRUE(fsys.removeFile(dir + "/link"));
    EXPECT_TRUE(fsys.removeDirectory(dir + "/empty"));
    EXPECT_TRUE(fsys.createDirectory(dir + "/new"));
    EXPECT_TRUE(fsys.makeNormal(dir + "/a.txt"));
    auto folder = fsys.openFolder(dir);
    ASSERT_TRUE(folder);
    auto sub = folder->openFolder("sub"); // a folder opened below a preview's folder is the preview's too
    ASSERT_TRUE(sub);
    EXPECT_TRUE(sub->removeFile("b.txt"));
    EXPECT_TRUE(folder->removeFolder("sub")); // empty now, as far as the preview goes
    platform::Folder::Refusal why{};
    auto overwrite = folder->openForOverwrite("a.txt", why);
    ASSERT_TRUE(overwrite);
    EXPECT_EQ(overwrite->write("XXXX", 4), 4u);
    EXPECT_TRUE(overwrite->truncate());
    EXPECT_TRUE(folder->setMarks("a.txt", platform::Attr::ReadOnly));
    auto created = folder->openFile("made.txt", platform::Folder::Create::Exclusive);
    ASSERT_TRUE(created);
    EXPECT_EQ(created->write("new", 3), 3u);
    EXPECT_TRUE(folder->removeFile("a.txt"));
    auto raw = preview.rawFiles().open(dir + "/raw.txt");
    ASSERT_TRUE(raw);
    EXPECT_EQ(raw->write("r", 1), 1u);

    auto& reg = preview.registry();
    platform::RegKey key = 0, made = 0;
    EXPECT_EQ(reg.createKey(platform::CurrentUserRoot, "Software\\Made", made),
              platform::RegResult::FileNotFound);
    ASSERT_EQ(reg.openKey(platform::CurrentUserRoot, "Software\\Tavi", key), platform::RegResult::Success);
    EXPECT_EQ(
        reg.setValue(key, "added", platform::RegType::Sz, reinterpret_cast<const std::uint8_t*>("x"), 2),
        platform::RegResult::Success);
    EXPECT_EQ(reg.deleteValue(key, "kept"), platform::RegResult::Success);
    EXPECT_EQ(reg.queryValue(key, "kept", nullptr, nullptr, nullptr), platform::RegResult::FileNotFound);
    reg.closeKey(key);

    EXPECT_TRUE(preview.urlCache().deleteEntry(cached.front(), refusing));
    EXPECT_EQ(preview.urlCache().deleteUnlisted(refusing), 0u);
    EXPECT_TRUE(preview.urlHistory().addUrl("https://added.example/", "Added", 0));
    EXPECT_TRUE(preview.urlHistory().deleteUrl(testsupport::visitedPages().front().url, 0, refusing));
    EXPECT_TRUE(preview.urlHistory().clearHistory(refusing));
    RefusingUi ui;
    EXPECT_TRUE(preview.recycleBin().empty("", 0, ui));
    EXPECT_TRUE(preview.recycleBin().clearRecentDocuments(refusing));
    EXPECT_TRUE(preview.shell().open(dir + "/a.txt"));
    EXPECT_TRUE(preview.shell().startProgram("tavipop"));
    EXPECT_EQ(preview.virtualMemory().commitLarge(1 << 20), nullptr);
    EXPECT_TRUE(preview.virtualMemory().setOutOfMemoryScore(platform::VirtualMemory::FirstToGo));
    overwrite.reset();
    created.reset();
    raw.reset();

    // Later reads see what the preview did; the machine does not.
    EXPECT_FALSE(fsys.info(dir + "/a.txt"));
    EXPECT_FALSE(folder->entry("sub"));
    EXPECT_FALSE(folder->openFolder("sub"));
    EXPECT_EQ(testsupport::changedFiles(before, testsupport::treeSnapshot(root)), std::vector<std::string>{});
    EXPECT_EQ(real.virtualMemory().outOfMemoryScore(), score);
    EXPECT_EQ(testsupport::cachedAddresses(real.urlCache()), cached);

    std::vector<Kind> kinds;
    for (const Change& c : preview.changes())
        kinds.push_back(c.kind);
    using enum platform::Change::Kind;
    EXPECT_EQ(kinds, (std::vector<Kind>{RemoveFile, RemoveDirectory, CreateDirectory, MakeNormal, RemoveFile,
                                        RemoveDirectory, MakeNormal, WriteFile, TruncateFile, SetMarks, CreateFile, WriteFile,
                                        RemoveFile, CreateFile, WriteFile, CreateKey, SetValue, DeleteValue,
                                        DeleteCacheEntry, DeleteUnlistedCache, AddHistory, DeleteHistory,
                                        ClearHistory, EmptyRecycleBin, ClearRecentDocuments, OpenTarget,
                                        StartProgram, FillMemory, SetOutOfMemoryScore}));
    const auto writes = preview.changes(Kind::WriteFile);
    ASSERT_EQ(writes.size(), 3u);
    EXPECT_EQ(writes[0].target, dir + "/a.txt");
    EXPECT_EQ(writes[0].bytes, 4u);
}
