// shred, shred-dir and wipe-free-space as a user runs them: the question, the exit codes, what a
// user is told of what was left alone, and a wipe interrupted by Ctrl-C or another ending signal. What the wipes
// leave on disk is for the engines' tests.

#include "tests/support/Process.h"
#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::contains;
using testsupport::runCli;
using testsupport::ScratchDir;
using testsupport::shellQuoted;

// A link, a folder or a missing name among the files ends shred with 2 before any file is touched;
// shred-dir given a link ends with 2 too, and with 1 after a hard-linked file it could only unlink.
TEST(WipeCli, WhatIsNotAPlainFileOrFolderIsRefusedAndAHardLinkedFileNamed) {
    ScratchDir dir, outside;
    const auto file = dir.write("diary.txt", "dear diary");
    fs::create_symlink(file, dir.path() / "link");
    for (const fs::path& bad : {dir.path() / "link", dir.path(), dir.path() / "missing"}) {
        const auto r = runCli("shred --yes " + shellQuoted(file) + " " + shellQuoted(bad));
        EXPECT_EQ(r.code, 2) << bad;
        EXPECT_TRUE(contains(r.seen(), bad.string())) << r.seen();
    }
    EXPECT_EQ(readFile(file), "dear diary");

    fs::create_symlink(outside.path(), dir.path() / "dir-link");
    EXPECT_EQ(runCli("shred-dir --yes " + shellQuoted(dir.path() / "dir-link")).code, 2);
    const auto kept = outside.write("kept.txt", "outside bytes");
    const auto victim = dir.path() / "victim";
    dir.write("victim/sub/a.txt", "a");
    fs::create_hard_link(kept, victim / "hard.txt");
    const testsupport::CliResult r = runCli("shred-dir --yes " + shellQuoted(victim));
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, (victim / "hard.txt").string() + ": has other hard links")) << r.err;
    EXPECT_EQ(readFile(kept), "outside bytes");
}

TEST(WipeCli, WhereOverwritingCannotReachIsSaidBeforeAnythingIsWritten) {
    struct Case {
        const char* mkfs;
        const char* said; ///< what the note names; empty: no note
    };
    const Case cases[] = {{"mkfs.btrfs -q -f", "a copy-on-write filesystem (btrfs)"},
                          {"mkfs.xfs -q -f -m reflink=1", "a copy-on-write filesystem (xfs)"},
                          {"mkfs.xfs -q -f -m reflink=0", ""},
                          {"mkfs.xfs -q -f -m reflink=0", "a solid-state or flash device"}};
    for (const Case& c : cases) {
        ScratchDir dir;
        testsupport::LoopImage disk(dir.path(), 320, c.mkfs);
        if (!disk.mounted())
            GTEST_SKIP() << disk.reason();
        const std::string said = c.said;
        // The loop device as the image's own binding names it, not as the machine's mount table does.
        const std::string device = testsupport::runCommand("losetup -n -O NAME -j " + shellQuoted(disk.image())).out;
        const fs::path rotational = "/sys/block/" + fs::path(device.substr(0, device.find('\n'))).filename().string() + "/queue/rotational";
        // The loop device plays a device with spinning platters, or one without (loop devices are
        // reused: each case says which it wants).
        std::ofstream(rotational) << (said == "a solid-state or flash device" ? "0" : "1");
        std::ofstream(disk.mountPoint() / "f.txt") << "data";
        for (const std::string& command : {"shred " + shellQuoted(disk.mountPoint() / "f.txt"),
                                           "shred-dir " + shellQuoted(disk.mountPoint()),
                                           "wipe-free-space " + shellQuoted(disk.mountPoint())}) {
            const auto r = runCli(command); // answered No: nothing is written
            EXPECT_EQ(r.code, 1) << command << "\n" << r.err;
            const auto note = r.err.find("Note: ");
            if (said.empty()) {
                EXPECT_EQ(note, std::string::npos) << c.mkfs << " " << command << "\n" << r.err;
                continue;
            }
            ASSERT_NE(note, std::string::npos) << c.mkfs << " " << command << "\n" << r.err;
            EXPECT_TRUE(contains(r.err, " is on " + said)) << r.err;
            EXPECT_TRUE(contains(r.err, "\"What overwriting cannot reach\" in the README")) << r.err;
            EXPECT_LT(note, r.err.find("Tavi Message")) << "the note comes before the question";
        }
        EXPECT_EQ(readFile(disk.mountPoint() / "f.txt"), "data");
    }
}

class InterruptedWipe : public ::testing::TestWithParam<int> {};

TEST_P(InterruptedWipe, LeavesNoTemporaryFile) {
    ScratchDir dir;
    testsupport::LoopImage image(dir.path(), 48);
    if (!image.mounted())
        GTEST_SKIP() << "no loop-mounted filesystem to wipe: " << image.reason();
    const fs::path temp = image.mountPoint() / "WNXTEMP.000";
    const fs::path errors = dir.path() / "stderr.txt";
    testsupport::BackgroundCli wipe("wipe-free-space --yes " + shellQuoted(image.mountPoint()) + " 2>" +
                                    shellQuoted(errors));
    // Interrupted while it writes its temporary file: it stops cleanly, and the file goes.
    EXPECT_TRUE(testsupport::waitUntil([&] { return fs::exists(temp); })) << "the wipe never started";
    EXPECT_EQ(wipe.stop(GetParam()), 1) << "killed by the signal instead of stopping cleanly";
    EXPECT_TRUE(contains(readFile(errors), "interrupted")) << readFile(errors);
    EXPECT_FALSE(fs::exists(temp));
}

// SIGHUP: the terminal closed or the user logged out; SIGQUIT: Ctrl-\.
INSTANTIATE_TEST_SUITE_P(Signals, InterruptedWipe, ::testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT),
                         [](const auto& info) { return std::string(sigabbrev_np(info.param)); });
