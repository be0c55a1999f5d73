// What the command line says about its work: the counts of changes taken at the platform, the
// closing line a user reads, and the progress bar. Real files in a scratch folder, and
// the real program for what a user sees.

#include "cli/CountingPlatform.h"
#include "cli/ProgressBar.h"
#include "cli/Summary.h"
#include "cli/VerdictLedger.h"
#include "platform/Folder.h"
#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>
#include <tuple>

namespace fs = std::filesystem;
using testsupport::CliResult;
using testsupport::contains;
using testsupport::runCli;
using testsupport::ScratchDir;
using testsupport::shellQuoted;

TEST(ChangeCounts, OnlyWhatTheVerdictsAndTheRegistrySayHappenedIsCounted) {
    cli::VerdictLedger ledger;
    auto overwritten = core::Verdict::about("a");
    overwritten.overwritten = overwritten.removed = overwritten.verified = true;
    overwritten.streams = 2;
    ledger.record(overwritten);
    auto kept = core::Verdict::about("b");
    kept.overwritten = true;
    ledger.record(kept);
    // A failed pass: bytes were written, yet the file counts as deleted, never as overwritten.
    auto failed = core::Verdict::left("c", "pass 1 could not be written: No space left on device");
    failed.removed = true;
    failed.bytes = 4096;
    failed.streams = 1; // its streams were written, yet they count no more than it does
    ledger.record(failed);
    ledger.record(core::Verdict::left("d", "is open or mapped in a running program; left alone"));
    auto folder = core::Verdict::about("e", true);
    folder.removed = true;
    ledger.record(folder);

    cli::ChangeCounts counts;
    counts.bytesWritten = 220;
    ledger.addTo(counts);
    EXPECT_EQ(cli::describeChanges(counts), "1 file overwritten and deleted, 1 file overwritten, "
                                            "2 alternate data streams overwritten with them, 1 file deleted, "
                                            "1 folder deleted, 1 file verified, 220 B written");

    // The registry's changes are counted at the platform, a value only when it really changed.
    testsupport::writeUserReg(std::getenv("WINEPREFIX"), "");
    auto native = platform::createNative();
    cli::CountingPlatform counted(*native);
    platform::RegKey key = 0;
    ASSERT_EQ(counted.registry().createKey(platform::CurrentUserRoot, "Software\\Tavi", key),
              platform::RegResult::Success);
    const std::uint8_t data[] = {'a', 0};
    EXPECT_EQ(counted.registry().setValue(key, "url1", 1, data, 2), platform::RegResult::Success);
    EXPECT_EQ(counted.registry().deleteValue(key, "url1"), platform::RegResult::Success);
    EXPECT_NE(counted.registry().deleteValue(key, "url1"), platform::RegResult::Success); // gone: not counted
    counted.registry().closeKey(key);
    EXPECT_EQ(cli::describeChanges(counted.counts()), "1 registry value removed, 1 registry value written");
}

TEST(ProgressBar, ShowsDoneOfTotalAndTheRateAndClearsItsLine) {
    testing::internal::CaptureStderr();
    {
        cli::ProgressBar bar(true);
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        bar.bytes(3 << 20, 10 << 20, "diary.txt  pass 4/35");
    }
    const std::string drawn = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(contains(drawn, " 30%  diary.txt  pass 4/35  3.0 MiB / 10.0 MiB  ")) << drawn;
    EXPECT_TRUE(contains(drawn, " MiB/s")) << drawn;
    EXPECT_TRUE(drawn.ends_with("\r\033[K")) << drawn; // the line is cleared when the bar goes
}

TEST(CommandSummary, EveryChangingCommandSaysSoEvenWhenNothingChangedAndReadersStaySilent) {
    ScratchDir dir;
    const std::string d = shellQuoted(dir.path());
    const std::string file = shellQuoted(dir.write("Cookies/index.dat", std::string(2048, 0)));
    // Declined (no terminal to ask on), refused (the scratch folder is on no drive of the scratch
    // mount table) or nothing to do: a clean run and an empty one must differ, and a declined
    // question ends with 1 whichever command asked it.
    const std::tuple<std::string, std::string, int> changing[] = {
        {"shred " + file, "shred", 1},
        {"shred-dir " + d, "shred-dir", 1},
        {"wipe-free-space " + d, "wipe-free-space", 2},
        {"wipe-memory", "wipe-memory", 1},
        {"indexdat wipe " + file, "indexdat wipe", 1},
        {"clean-item 'Run Menu'", "clean-item", 0},
        {"wipe-cache --yes", "wipe-cache", 0},
        {"clean-all", "clean-all", 1},
        {"history clear", "history clear", 1},
    };
    for (const auto& [arguments, path, code] : changing) {
        const CliResult r = runCli(arguments);
        EXPECT_EQ(r.code, code) << arguments << "\n" << r.err;
        EXPECT_TRUE(r.err.ends_with("scourmill-cli: " + path + ": nothing changed\n")) << arguments << "\n" << r.err;
    }
    const std::string reading[] = {"indexdat find " + d, "indexdat report " + file, "memmon --once", "preview",
                                   "history list"};
    for (const std::string& arguments : reading) {
        const CliResult r = runCli(arguments);
        EXPECT_EQ(r.code, 0) << arguments << "\n" << r.err;
        EXPECT_EQ(r.err, "") << arguments;
    }
    // A command that changed something says what; --quiet silences that line too.
    const CliResult shred = runCli("shred --yes " + file);
    EXPECT_TRUE(contains(shred.err, "scourmill-cli: shred: 1 file overwritten and deleted, ")) << shred.err;
    dir.write("folder/below/old.txt", "old");
    const CliResult quiet = runCli("shred-dir --yes --quiet " + shellQuoted(dir.path() / "folder"));
    EXPECT_EQ(quiet.code, 0) << quiet.err;
    EXPECT_EQ(quiet.err, "");
}
