// Opening, seeking, writing and reading raw files is the file object's test (tests/wipe); here,
// the names that lead elsewhere.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace fs = std::filesystem;

TEST(RawFiles, NeverWritesThroughALinkOfEitherKind) {
    auto p = platform::createNative();
    platform::RawFiles& files = p->rawFiles();
    testsupport::ScratchDir dir;
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
