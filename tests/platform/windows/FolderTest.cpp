// Open folders on Windows, on real files: a walk reaches entries below the folder's handle, the
// folder cannot be moved away while it is open, links, folders and files with other names are
// never opened for writing, a file's alternate data streams are overwritten with it, and the last
// pass is read back past the system's cache.

#include "platform/Folder.h"
#include "platform/Platform.h"
#include "proxies/ProxyPlatform.h"
#include "tests/support/Scratch.h"
#include "tests/support/Wine.h"
#include "wipe/Engine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <map>

namespace fs = std::filesystem;
using testsupport::ScratchDir;

class WindowsFolderTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::FileSystem& files = p->fileSystem();
    ScratchDir dir;

    std::string at(const std::string& name) const { return dir.str() + "\\" + name; }

    static std::map<std::string, platform::FileInfo> listed(platform::Folder& folder) {
        std::map<std::string, platform::FileInfo> out;
        EXPECT_TRUE(folder.list([&](const platform::FileInfo& fi) {
            out[fi.name] = fi;
            return true;
        }));
        return out;
    }
};

TEST_F(WindowsFolderTest, EntriesAreReachedBelowAFolderThatStaysInPlace) {
    dir.write("walk\\a.txt", "alpha");
    dir.write("walk\\sub\\b.txt", "beta");
    auto walk = files.openFolder(at("walk"));
    ASSERT_TRUE(walk);
    EXPECT_NE(walk->self().index, 0u);

    const auto entries = listed(*walk);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries.at("a.txt").size, 5u);
    EXPECT_EQ(entries.at("a.txt").mount, walk->self().mount);
    EXPECT_TRUE(walk->entry("A.TXT")); // the system's case rules
    EXPECT_FALSE(walk->entry("sub\\b.txt")); // one name, never a path
    EXPECT_FALSE(walk->entry(".."));

    // While the walk is inside, the folder can be neither renamed nor replaced.
    EXPECT_FALSE(::MoveFileW(fs::path(at("walk")).c_str(), fs::path(at("moved")).c_str()));
    auto sub = walk->openFolder("sub");
    ASSERT_TRUE(sub);
    EXPECT_EQ(sub->path(), at("walk") + "\\sub");
    EXPECT_TRUE(sub->self().sameFileAs(entries.at("sub")));
    EXPECT_FALSE(walk->openFolder("a.txt"));

    auto file = sub->openFile("b.txt", false);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->info()->sameFileAs(*sub->entry("b.txt")));
    EXPECT_FALSE(file->openElsewhere());
    EXPECT_FALSE(sub->openFile("b.txt", false)); // exclusive
    file.reset();
    EXPECT_FALSE(sub->openFile("new.txt", false));
    EXPECT_TRUE(sub->openFile("new.txt", true));
    // Only a file the call creates itself: a name already taken is refused.
    EXPECT_FALSE(sub->openFile("new.txt", platform::Folder::Create::Exclusive));
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_FILE_EXISTS));
    EXPECT_TRUE(sub->openFile("newer.txt", platform::Folder::Create::Exclusive));

    EXPECT_FALSE(walk->removeFolder("sub")); // not empty
    EXPECT_FALSE(walk->removeFile("sub"));   // a real folder is no file
    for (const char* name : {"b.txt", "new.txt", "new.txt", "newer.txt"}) // the second: already gone
        EXPECT_TRUE(sub->removeFile(name)) << name;
    sub.reset();
    EXPECT_TRUE(walk->removeFolder("sub"));
    walk.reset();
    EXPECT_TRUE(::MoveFileW(fs::path(at("walk")).c_str(), fs::path(at("moved")).c_str()));
}

TEST_F(WindowsFolderTest, ReadOnlyEntriesBecomeNormalAndHardLinkedFilesStayUnwritten) {
    const fs::path ro = dir.write("f\\ro.txt", "x");
    ASSERT_TRUE(::SetFileAttributesW(ro.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
    const fs::path shared = dir.write("f\\shared.txt", "both names");
    ASSERT_TRUE(::CreateHardLinkW(fs::path(at("other.txt")).c_str(), shared.c_str(), nullptr));

    auto folder = files.openFolder(at("f"));
    ASSERT_TRUE(folder);
    EXPECT_FALSE(folder->removeFile("ro.txt")); // the system refuses a read-only file
    EXPECT_TRUE(folder->makeNormal("ro.txt"));
    EXPECT_EQ(folder->entry("ro.txt")->attributes & (platform::Attr::ReadOnly | platform::Attr::Hidden), 0u);
    EXPECT_TRUE(folder->removeFile("ro.txt"));

    EXPECT_EQ(folder->entry("shared.txt")->links, 2u);
    EXPECT_FALSE(folder->openFile("shared.txt", false));
    EXPECT_EQ(p->rawFiles().lastError(), ERROR_TOO_MANY_LINKS);
    EXPECT_FALSE(p->rawFiles().open(shared.string()));
    EXPECT_TRUE(p->rawFiles().openForReading(shared.string())); // reading changes nothing
    EXPECT_TRUE(folder->removeFile("shared.txt"));
    EXPECT_EQ(testsupport::readFile(at("other.txt")), "both names");
}

TEST_F(WindowsFolderTest, ALinkInAFolderIsNeverEnteredOrWrittenThrough) {
    dir.write("target\\keep.txt", "keep");
    fs::create_directories(dir.path() / "wiped");
    ASSERT_TRUE(testsupport::makeFolderLink(at("wiped\\link"), at("target")));
    EXPECT_FALSE(files.openFolder(at("wiped\\link"))); // not as the last component either

    auto wiped = files.openFolder(at("wiped"));
    ASSERT_TRUE(wiped);
    const auto link = wiped->entry("link");
    ASSERT_TRUE(link);
    EXPECT_TRUE(link->isLink() && !link->isDirectory());
    EXPECT_EQ(link->mount, wiped->self().mount); // a link, not a mount point: it may be removed
    EXPECT_FALSE(wiped->openFolder("link"));
    EXPECT_FALSE(wiped->openFile("link", true));
    EXPECT_TRUE(wiped->makeNormal("link"));
    EXPECT_FALSE(wiped->removeFolder("link"));
    // The link alone goes; where the system cannot open it as itself (Wine) it stays. Either way
    // nothing behind it is touched, not even an empty folder.
    fs::remove(dir.path() / "target" / "keep.txt");
    const bool removed = wiped->removeFile("link");
    EXPECT_EQ(removed, !wiped->entry("link").has_value());
    if (!testsupport::underWine()) {
        EXPECT_TRUE(removed);
    }
    EXPECT_TRUE(fs::is_directory(dir.path() / "target"));
}

namespace {

/// Two passes of one byte value each over the whole length, naming what each overwrite started on.
class TwoPasses final : public wipe::OverwriteScheme {
public:
    int passes() const override { return 2; }
    void starting(const std::string& shown) override { started.push_back(shown); }
    Pass writePass(int pass, wipe::PassWriter& out) override {
        const std::string bytes(static_cast<std::size_t>(out.length()), pass == 1 ? '\xAA' : '\x55');
        return out.write(0, bytes.data(), bytes.size()) ? Pass::Written : Pass::Failed;
    }
    std::vector<std::string> started;
};

/// A real folder whose files each have one extra stream "extra", kept as the file "<name>.extra"
/// beside it and answered for as the file itself: what the engine does to a stream stays readable
/// on a system (Wine) that keeps no streams.
class SideStreams final : public platform::ProxyFolder {
public:
    using ProxyFolder::ProxyFolder;
    std::vector<std::string> extraStreams(const std::string& name) override {
        return real().entry(name + ".extra") ? std::vector<std::string>{"extra"} : std::vector<std::string>{};
    }
    std::unique_ptr<platform::RawFile> openStream(const std::string& name, const std::string& stream) override {
        auto side = real().openFile(name + "." + stream, false);
        const auto owner = real().entry(name);
        return side && owner ? std::make_unique<AsFile>(std::move(side), *owner) : nullptr;
    }

private:
    /// The side file, told as the file whose stream it stands for.
    class AsFile final : public platform::ProxyRawFile {
    public:
        AsFile(std::unique_ptr<platform::RawFile> side, platform::FileInfo owner)
            : ProxyRawFile(std::move(side)), m_owner(std::move(owner)) {}
        std::optional<platform::FileInfo> info() const override {
            auto facts = real().info();
            if (facts) {
                facts->device = m_owner.device;
                facts->index = m_owner.index;
            }
            return facts;
        }
        bool openElsewhere() const override { return false; }

    private:
        platform::FileInfo m_owner;
    };
};

} // namespace

TEST_F(WindowsFolderTest, EveryStreamOfAFileIsOverwrittenWithItAndCut) {
    dir.write("s\\f.txt", "main data");
    dir.write("s\\f.txt.extra", "stream data!");
    SideStreams folder(files.openFolder(at("s")));
    wipe::Engine engine(*p, nullptr, nullptr);
    TwoPasses scheme;
    wipe::OverwriteOptions options;
    options.verify = true;
    const auto v = engine.overwrite(folder, "f.txt", scheme, options);
    EXPECT_TRUE(v.overwritten && v.removed && v.verified) << v.why;
    EXPECT_EQ(v.bytes, 2u * (9 + 12));
    EXPECT_EQ(scheme.started, (std::vector<std::string>{at("s\\f.txt") + ":extra", at("s\\f.txt")}));
    EXPECT_EQ(fs::file_size(at("s\\f.txt.extra")), 0u); // cut once written
}

TEST_F(WindowsFolderTest, AFileWrittenInPlaceKeepsItsReadOnlyAndHiddenMarks) {
    const fs::path kept = dir.write("m\\kept.dat", "keep me marked");
    const DWORD marks = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;
    ASSERT_TRUE(::SetFileAttributesW(kept.c_str(), marks));
    const DWORD before = ::GetFileAttributesW(kept.c_str()) & marks; // what the system keeps of them
    ASSERT_NE(before & FILE_ATTRIBUTE_READONLY, 0u);
    auto folder = files.openFolder(at("m"));
    ASSERT_TRUE(folder);
    wipe::Engine engine(*p, nullptr, nullptr);
    TwoPasses scheme;
    wipe::OverwriteOptions options;
    options.remove = false;
    EXPECT_TRUE(engine.overwrite(*folder, "kept.dat", scheme, options).overwritten);
    EXPECT_EQ(testsupport::readFile(kept), std::string(14, '\x55'));
    EXPECT_EQ(::GetFileAttributesW(kept.c_str()) & marks, before);
}

TEST_F(WindowsFolderTest, TheLastPassIsReadBackPastTheCache) {
    dir.write("r\\f.bin", std::string(1000, 'x'));
    auto folder = files.openFolder(at("r"));
    auto file = folder->openFile("f.bin", false);
    ASSERT_TRUE(file);
    // A second handle of its own, reading whole sectors without the cache.
    auto reader = file->openUncached();
    ASSERT_TRUE(reader);
    const std::size_t align = reader->readAlignment();
    ASSERT_GE(align, 512u);
    std::vector<char> buffer(align * 3);
    char* aligned = buffer.data() + (align - reinterpret_cast<std::uintptr_t>(buffer.data()) % align) % align;
    ASSERT_EQ(reader->seek(0, platform::RawFile::From::Begin), 0);
    EXPECT_EQ(reader->read(aligned, align * 2), 1000u); // up to the file's end
    EXPECT_EQ(std::string(aligned, 1000), std::string(1000, 'x'));
    reader.reset();
    file.reset();

    // A handle that shares nothing: the cache is written out and read through a copy of it.
    auto alone = p->rawFiles().open(at("r\\f.bin"));
    ASSERT_TRUE(alone);
    reader = alone->openUncached();
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader->readAlignment(), 1u);
    char head[4] = {};
    ASSERT_EQ(reader->seek(0, platform::RawFile::From::Begin), 0);
    EXPECT_EQ(reader->read(head, 4), 4u);
    EXPECT_EQ(std::string(head, 4), "xxxx");
}
