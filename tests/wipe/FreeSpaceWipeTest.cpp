// The free-space wipe on a real folder with small figures: the bytes each pass leaves, the
// removable increment's rounding, the exit, pause and quit paths, the drive-kind refusal, a link on
// the way repointed in the middle of a run, and a temporary file's name already taken.

#include "platform/Platform.h"
#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"
#include "tests/support/ScratchMount.h"
#include "tests/wipe/Recorders.h"
#include "wipe/FileError.h"
#include "wipe/FreeSpaceWipe.h"
#include "wipe/Random.h"
#include "wipe/WipeTexts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>

namespace fs = std::filesystem;
using core::Currency;
using testsupport::readFile;
using testsupport::ScratchDir;
using wipe::FreeSpaceWipe;

namespace {

struct FreeSpaceWipeTest : ::testing::Test {
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    ScratchDir dir;
    testsupport::FreeSpaceRecorder view;
    core::QuietSink quiet;
    FreeSpaceWipe wipe{*platform, view, quiet};
    fs::path temp = dir.path() / "WNXTEMP.000";

    /// The temporary file's content after the last increment of each pass.
    std::map<int, std::string> contentAfterEachPass(Currency free, Currency increment) {
        std::map<int, std::string> seen;
        view.onProgress = [&](const wipe::FreeSpaceProgress& now) {
            if (now.index == now.count)
                seen[now.pass] = readFile(temp);
        };
        EXPECT_EQ(wipe.run(dir.str(), free, increment), FreeSpaceWipe::Outcome::Completed);
        return seen;
    }
};

std::string wide(const std::string& pair, int chars) {
    std::string out;
    for (int i = 0; i < chars; ++i)
        out += pair;
    return out;
}

} // namespace

TEST_F(FreeSpaceWipeTest, ThreeWideBlocksPerIncrementLeaveTheFirstBlockBehindAndSeeksRoundHalfToEven) {
    // Increment 4: blocks of 4 characters, 8 bytes; 12 free bytes make 3 increments.
    const auto after = contentAfterEachPass(Currency::fromWhole(12), Currency::fromWhole(4));
    ASSERT_EQ(after.size(), 35u);
    EXPECT_EQ(after.at(7), wide("\x19\x20", 4) + wide(std::string("\x24\x00", 2), 4)); // 0x92 is U+2019
    for (int pass : {1, 35}) {
        const std::string& bytes = after.at(pass);
        ASSERT_EQ(bytes.size(), 16u);
        EXPECT_EQ(bytes.substr(0, 8), wide(bytes.substr(0, 2), 4)) << "pass " << pass;
    }
    EXPECT_FALSE(fs::exists(temp));
    EXPECT_FALSE(view.wipeEnabled); // the plain ending leaves the buttons as they are
    EXPECT_EQ(view.steps.back().offset, Currency::fromWhole(12));

    // The removable increment: four of 1423.5 start at 0, 1424, 2847 and 4270, each seek rounded
    // half to even; each writes 2848 bytes.
    wipe.setVerify(true);
    const auto removable = contentAfterEachPass(Currency::fromWhole(5694), FreeSpaceWipe::removableIncrement());
    EXPECT_EQ(removable.at(10), std::string(4270 + 2848, '\0'));
    // The random last pass, its blocks laid from odd offsets too, reads back as it was written.
    EXPECT_TRUE(wipe.verified()) << wipe.verifyOutcome();
}

TEST_F(FreeSpaceWipeTest, QuitWhileRunningTicksTheExitBoxWhichIsConfirmedAndPauseWaitsForTheUntick) {
    EXPECT_TRUE(wipe.requestQuit(true)); // buttons enabled: the window may close
    view.ask.answers = {false};
    EXPECT_FALSE(wipe.requestQuit(false));
    EXPECT_FALSE(view.exitBox);
    EXPECT_TRUE(wipe.requestQuit(false)); // Yes, and no run is left to read the box: close now
    view.exitBox = false;
    view.ask.asked.clear();
    view.ask.answers = {true, false}; // quit, then No to the exit: the wipe goes on until asked again
    int pumps = 0;
    view.onPump = [&] {
        if (view.pauseBox && ++pumps == 3)
            view.pauseBox = false;
    };
    view.onProgress = [&](const wipe::FreeSpaceProgress& now) {
        if (now.pass == 1 && now.index == 1)
            view.pauseBox = true;
        if (now.pass == 2 && now.index == 1) {
            EXPECT_FALSE(wipe.requestQuit(view.wipeEnabled));
        }
        if (now.pass == 3 && now.index == 2)
            view.exitBox = true;
    };
    EXPECT_EQ(wipe.run(dir.str(), Currency::fromWhole(40), Currency::fromWhole(4)), FreeSpaceWipe::Outcome::Exited);
    EXPECT_EQ(view.ask.asked, (std::vector<std::string>{"Tavi Wipe is still running. Are you sure you wish to quit?",
                                                        "Press Yes to exit Wiping Function",
                                                        "Press Yes to exit Wiping Function"}));
    ASSERT_EQ(view.ask.told.size(), 2u);
    EXPECT_TRUE(std::regex_match(view.ask.told[0], std::regex(R"(Paused for [0-9]+(\.[0-9]+)? seconds)")))
        << view.ask.told[0];
    EXPECT_EQ(view.passes.back(), 3);
    EXPECT_FALSE(fs::exists(temp));
    EXPECT_TRUE(view.wipeEnabled);
}

TEST_F(FreeSpaceWipeTest, OnlyAFileTheRunCreatedItselfIsEverWritten) {
    // A file put there between two passes is not opened: the run ends on the open error.
    view.onPass = [&](int pass) {
        if (pass == 2)
            dir.write("WNXTEMP.000", "planted");
    };
    try {
        wipe.run(dir.str(), Currency::fromWhole(12), Currency::fromWhole(4));
        ADD_FAILURE() << "no error raised";
    } catch (const wipe::FileError& e) {
        EXPECT_EQ(e.number(), 45602);
        EXPECT_EQ(e.description().rfind("Error opening '" + temp.string() + "'.\r\nError ", 0), 0u);
    }
    EXPECT_EQ(readFile(temp), "planted");
    EXPECT_FALSE(wipe.running());
}

TEST_F(FreeSpaceWipeTest, StaleTemporaryFileIsOfferedUnlessAWipeHoldsItAndKeptWhenTheUserSaysNo) {
    EXPECT_FALSE(wipe.offerStaleRemoval(dir.str())); // none there
    dir.write("WNXTEMP.000", "left by a crash");
    {
        wipe::Random holder(platform->rawFiles());
        holder.OpenFile(temp.string());
        EXPECT_FALSE(wipe.offerStaleRemoval(dir.str()));
        EXPECT_TRUE(view.ask.asked.empty());
    }
    view.ask.answers = {false};
    EXPECT_FALSE(wipe.offerStaleRemoval(dir.str()));
    EXPECT_NE(view.ask.asked.back().find(temp.string()), std::string::npos);
    // Kept means kept: the wipe refuses rather than write into it.
    EXPECT_EQ(wipe.run(dir.str(), Currency::fromWhole(12), Currency::fromWhole(4)), FreeSpaceWipe::Outcome::Refused);
    EXPECT_EQ(view.ask.told.back(), wipe::texts::tempNameTaken(temp.string()));
    EXPECT_EQ(readFile(temp), "left by a crash");
    EXPECT_TRUE(wipe.offerStaleRemoval(dir.str()));
    EXPECT_FALSE(fs::exists(temp));
}

TEST_F(FreeSpaceWipeTest, TheDriveKindIsJudgedOnTheFolderTheRunFillsHoweverTheWayToItChanges) {
    // A fixed drive (an ext4 image) and a RAM disk, which both wipes refuse.
    testsupport::LoopImage image(dir.path() / "image", 8);
    if (!image.mounted())
        GTEST_SKIP() << image.reason();
    testsupport::ScratchMount ram("-t tmpfs -o size=64m scourmill-test", dir.path() / "ram");
    if (!ram.mounted())
        GTEST_SKIP() << ram.reason();
    for (const fs::path& drive : {image.mountPoint(), ram.point()})
        fs::create_directory(drive / "target");
    EXPECT_EQ(wipe.wipeFixed(ram.point().string()), FreeSpaceWipe::Outcome::Refused);
    EXPECT_EQ(view.ask.told, std::vector<std::string>{wipe::texts::driveNotWritten(ram.point().string(), "tmpfs")});
    EXPECT_FALSE(fs::exists(ram.point() / "WNXTEMP.000"));

    // The folder to wipe is reached through a link on the way that points at the image, until the
    // view, told the free space, points it at the RAM disk.
    const fs::path slot = dir.path() / "slot";
    fs::create_directory_symlink(image.mountPoint(), slot);
    view.onMeasured = [&] {
        fs::remove(slot);
        fs::create_directory_symlink(ram.point(), slot);
    };
    bool onImage = false, onRam = false;
    view.onProgress = [&](const wipe::FreeSpaceProgress&) {
        onImage = fs::exists(image.mountPoint() / "target/WNXTEMP.000");
        onRam = fs::exists(ram.point() / "target/WNXTEMP.000");
        view.stop = true;
    };

    EXPECT_EQ(wipe.wipeFixed((slot / "target").string()), FreeSpaceWipe::Outcome::Exited);
    EXPECT_TRUE(onImage);
    EXPECT_FALSE(onRam);
    // The free space measured was the image's, not the 64 MiB of the RAM disk.
    ASSERT_FALSE(view.steps.empty());
    EXPECT_LT(view.steps.front().count, 4);
    EXPECT_FALSE(fs::exists(image.mountPoint() / "target/WNXTEMP.000"));
}
