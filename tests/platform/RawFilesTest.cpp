#include "platform/Platform.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;
using testsupport::ScratchDir;

class RawFilesTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::RawFiles& files = p->rawFiles();
    ScratchDir dir;
};

TEST_F(RawFilesTest, OpenAlwaysCreatesMissingAndKeepsExistingContent) {
    const auto missing = dir.path() / "new.bin";
    ASSERT_TRUE(files.open(missing.string()));
    EXPECT_EQ(fs::file_size(missing), 0u);

    const auto existing = dir.write("old.bin", "0123456789");
    auto f = files.open(existing.string());
    ASSERT_TRUE(f);
    EXPECT_EQ(f->seek(4, platform::RawFile::From::Begin), 4);
    EXPECT_EQ(f->write("ab", 2), 2u);
    char buf[16] = {};
    EXPECT_EQ(f->read(buf, sizeof buf), 4u); // the rest of the file, then end of file
    EXPECT_EQ(testsupport::readFile(existing), "0123ab6789");
    EXPECT_EQ(f->seek(3, platform::RawFile::From::Begin), 3);
    EXPECT_TRUE(f->truncate());
    EXPECT_EQ(fs::file_size(existing), 3u);
}

TEST_F(RawFilesTest, NeverWritesThroughALinkOfEitherKind) {
    const auto target = dir.write("target.txt", "secret");
    fs::create_symlink(target, dir.path() / "link");
    EXPECT_FALSE(files.open((dir.path() / "link").string()));
    EXPECT_EQ(files.lastError(), ELOOP);
    // A second name for the same file: writing through either would change both.
    fs::create_hard_link(target, dir.path() / "second");
    EXPECT_FALSE(files.open(target.string()));
    EXPECT_EQ(files.lastError(), EMLINK);
    EXPECT_EQ(testsupport::readFile(target), "secret");
    EXPECT_TRUE(files.openForReading(target.string())); // reading harms nothing
}
