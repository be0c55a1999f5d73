// The Windows file facilities on real files: exclusive handles, error texts from the system, the
// system's wildcards, and links to folders that no listing or deletion goes through.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"
#include "tests/support/Wine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <map>

namespace fs = std::filesystem;
using testsupport::ScratchDir;

class WindowsFilesTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::RawFiles& raw = p->rawFiles();
    platform::FileSystem& files = p->fileSystem();
    ScratchDir dir;

    std::string at(const std::string& name) const { return dir.str() + "\\" + name; }

    std::map<std::string, platform::FileInfo> listed(const std::string& folder, const std::string& pattern) {
        std::map<std::string, platform::FileInfo> out;
        EXPECT_TRUE(files.list(folder, pattern, [&](const platform::FileInfo& fi) {
            out[fi.name] = fi;
            return true;
        }));
        return out;
    }
};

TEST_F(WindowsFilesTest, RawHandleIsExclusiveOpensAlwaysAndNeverTruncates) {
    const std::string path = dir.write("data.bin", "0123456789").string();
    auto file = raw.open(path);
    ASSERT_TRUE(file);
    // Share mode 0: nobody else gets the file meanwhile, not even a reader.
    EXPECT_FALSE(raw.open(path));
    EXPECT_EQ(raw.lastError(), ERROR_SHARING_VIOLATION);
    EXPECT_FALSE(raw.openForReading(path));
    EXPECT_TRUE(files.isInUse(path));
    EXPECT_EQ(file->seek(4, platform::RawFile::From::Begin), 4);
    EXPECT_EQ(file->write("ab", 2), 2u);
    char rest[16] = {};
    EXPECT_EQ(file->read(rest, sizeof rest), 4u);
    EXPECT_EQ(file->seek(1LL << 32, platform::RawFile::From::Begin), 1LL << 32); // the high half reaches the system
    EXPECT_EQ(file->seek(3, platform::RawFile::From::Begin), 3);
    EXPECT_TRUE(file->truncate());
    file.reset();
    EXPECT_FALSE(files.isInUse(path));
    EXPECT_EQ(testsupport::readFile(path), "012");

    auto created = raw.open(at("new.bin"));
    ASSERT_TRUE(created);
    EXPECT_EQ(fs::file_size(at("new.bin")), 0u);
}

TEST_F(WindowsFilesTest, ErrorTextsComeFromFormatMessage) {
    EXPECT_FALSE(raw.open(at("no\\such\\folder\\f.bin")));
    EXPECT_EQ(raw.lastError(), ERROR_PATH_NOT_FOUND);
    const std::string text = raw.errorText(ERROR_PATH_NOT_FOUND);
    ASSERT_FALSE(text.empty());
    // A text goes into the middle of a line: nothing of the system's line end stays.
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos) << text;
    EXPECT_NE(text.back(), ' ');
    EXPECT_EQ(raw.errorText(0x2BADBEEF), "");
    EXPECT_FALSE(raw.open(dir.str())); // a folder is no file to write
}

TEST_F(WindowsFilesTest, WildcardsFollowTheSystemsRulesWithoutLetterCase) {
    dir.write("index.dat", "12345");
    dir.write("INDEX.DAT.bak", "");
    dir.write("noext", "");
    fs::create_directory(dir.path() / "sub.dat");
    EXPECT_EQ(listed(dir.str(), "*").size(), 4u);
    EXPECT_EQ(listed(dir.str(), "*.*").size(), 4u); // also the name without a dot
    const auto dats = listed(dir.str(), "*.DAT");
    EXPECT_EQ(dats.size(), 2u);
    EXPECT_TRUE(dats.count("index.dat") && dats.count("sub.dat"));
    EXPECT_FALSE(files.matches("index.dat", "index.da"));
    EXPECT_TRUE(files.matches("a.b.c", "*.c"));
}

TEST_F(WindowsFilesTest, ALinkToAFolderIsAlwaysALink) {
    fs::create_directories(dir.path() / "target");
    dir.write("target\\keep.txt", "keep");
    fs::create_directories(dir.path() / "wiped");
    ASSERT_TRUE(testsupport::makeFolderLink(at("wiped\\link"), at("target")));

    const auto entries = listed(at("wiped"), "*");
    ASSERT_EQ(entries.count("link"), 1u);
    EXPECT_TRUE(entries.at("link").isLink() && !entries.at("link").isDirectory());
    platform::EntryKind kind = platform::EntryKind::Unknown;
    files.names(at("wiped"), [&](const std::string&, platform::EntryKind k) {
        kind = k;
        return true;
    });
    EXPECT_EQ(kind, platform::EntryKind::Link);
    // Nothing enters it, writes through it or opens what it points to.
    EXPECT_FALSE(files.list(at("wiped\\link"), "*", [](const platform::FileInfo&) { return true; }));
    EXPECT_FALSE(raw.open(at("wiped\\link")));
    EXPECT_TRUE(files.makeNormal(at("wiped\\link")));

    EXPECT_FALSE(files.removeFile(at("target"))); // a real folder is not a file
    EXPECT_FALSE(files.removeDirectory(at("wiped\\link")));
    // Removing the link takes the link alone. Wine cannot open a host link as itself, so there the
    // link stays: what matters is that nothing behind it is touched.
    const bool removed = files.removeFile(at("wiped\\link"));
    EXPECT_EQ(removed, !files.info(at("wiped\\link")).has_value());
    if (!testsupport::underWine()) {
        EXPECT_TRUE(removed);
    }
    EXPECT_EQ(testsupport::readFile(dir.path() / "target" / "keep.txt"), "keep");
}
