// Proof on a real ext4 filesystem that the data is gone from the disk: a secret is planted and
// shown to be in the raw image, the wipe runs, and after unmounting the raw image no longer holds
// it. A plain delete, by contrast, leaves it there, which is what the free-space wipe is for.

#include "platform/Platform.h"
#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"
#include "tests/wipe/Recorders.h"
#include "wipe/Engine.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/SecureDelete.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

const std::string Secret = "TAVI-SECRET-7f3a9c-do-not-survive";

/// A file of `bytes` bytes filled with the secret, forced to the disk.
void plant(const fs::path& path, std::size_t bytes) {
    std::string content;
    while (content.size() < bytes)
        content += Secret + "\n";
    content.resize(bytes - bytes % (Secret.size() + 1)); // whole copies only; length a multiple of 34
    std::ofstream(path, std::ios::binary) << content;
}

struct ErasureTest : ::testing::Test {
    testsupport::ScratchDir dir;
    testsupport::LoopImage image{dir.path(), 16};
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    core::QuietSink quiet;

    void SetUp() override {
        if (!image.mounted())
            GTEST_SKIP() << "no loop-mounted filesystem to prove erasure on: " << image.reason();
    }
    void expectPlantedThenGone(const std::function<void()>& wipe) {
        image.sync();
        ASSERT_TRUE(image.imageContains(Secret)) << "the secret never reached the disk; the test proves nothing";
        wipe();
        ASSERT_TRUE(image.unmount());
        EXPECT_FALSE(image.imageContains(Secret)) << "the secret survived on the disk";
    }
};

} // namespace

TEST_F(ErasureTest, ShreddedFilesAndFoldersLeaveNoTraceOnTheDiskAndReadBackAsTheLastPassWroteThem) {
    const fs::path file = image.mountPoint() / "secret.txt";
    // Blocks of over a mebibyte: their writes start at odd places and read back across chunks.
    plant(file, 5300 * 1000);
    const fs::path folder = image.mountPoint() / "private";
    fs::create_directory(folder);
    plant(folder / "one.txt", 34 * 3000);
    plant(folder / "two.txt", 34 * 50);
    expectPlantedThenGone([&] {
        testsupport::SecureDeleteRecorder view;
        testsupport::RecordingVerdicts verdict;
        wipe::SecureDelete shred(*platform, view, quiet, &verdict);
        shred.setVerify(true);
        EXPECT_TRUE(shred.WipeFile(file.string()));
        ASSERT_FALSE(verdict.all.empty());
        EXPECT_TRUE(verdict.all.back().overwritten && verdict.all.back().verified) << verdict.all.back().why;
        EXPECT_TRUE(shred.WipeFolder(folder.string()));
        EXPECT_FALSE(fs::exists(file) || fs::exists(folder));
    });
}

TEST_F(ErasureTest, TheReadBackNamesTheFirstByteThatDiffers) {
    const fs::path file = image.mountPoint() / "written.bin";
    std::ofstream(file, std::ios::binary) << std::string(300000, 'A');
    auto folder = platform->fileSystem().openFolder(image.mountPoint().string());
    auto raw = folder->openFile("written.bin", false);
    ASSERT_TRUE(raw && raw->flush());
    const auto expect = [](std::int64_t differentAt) {
        return [differentAt](std::uint64_t offset, unsigned char* out, std::size_t count) {
            for (std::size_t i = 0; i < count; ++i)
                out[i] = static_cast<std::int64_t>(offset + i) == differentAt ? 'B' : 'A';
        };
    };
    EXPECT_EQ(wipe::readBackDifference(*raw, 300000, expect(-1)), -1);
    EXPECT_EQ(wipe::readBackDifference(*raw, 300000, expect(299999)), 299999);
    EXPECT_EQ(wipe::readBackDifference(*raw, 300001, expect(-1)), 300000); // shorter than it should be
}

TEST_F(ErasureTest, FreeSpaceWipeOverwritesWhatAnOrdinaryDeleteLeftAndReadsItsLastPassBack) {
    const fs::path file = image.mountPoint() / "deleted.txt";
    plant(file, 34 * 60000);
    image.sync();
    fs::remove(file);
    expectPlantedThenGone([&] {
        testsupport::FreeSpaceRecorder view;
        wipe::FreeSpaceWipe wipe(*platform, view, quiet);
        wipe.setVerify(true);
        EXPECT_EQ(wipe.wipeFixed(image.mountPoint().string()), wipe::FreeSpaceWipe::Outcome::Completed)
            << (view.ask.told.empty() ? "" : view.ask.told.front());
        EXPECT_TRUE(wipe.verified()) << wipe.verifyOutcome();
        EXPECT_FALSE(fs::exists(image.mountPoint() / "WNXTEMP.000"));
    });
}
