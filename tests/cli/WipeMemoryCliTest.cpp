// wipe-memory as a user runs it: the question with the bytes it will fill, sizes it refuses, the
// stop at the memory floor, and Ctrl-C in the middle of a run, watched from outside through /proc.

#include "tests/support/CliProcess.h"
#include "tests/support/ProcFields.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using testsupport::procKilobytes;
using testsupport::runCli;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string grouped(std::uint64_t n) {
    std::string digits = std::to_string(n);
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(static_cast<std::size_t>(at), ",");
    return digits;
}

} // namespace

TEST(WipeMemoryCli, AsksWithTheBytesItWillFillAndRefusesSizesThatAreNoSize) {
    auto r = runCli("wipe-memory --size 10");
    EXPECT_EQ(r.code, 1); // no terminal to ask on: answered No, nothing filled
    EXPECT_TRUE(contains(r.err, "Fill 420,000,000 bytes of memory")) << r.err;

    // The default is the suggested size: the commit limit / 83.33333333 characters a string.
    const std::uint64_t commit =
        procKilobytes("/proc/meminfo", "MemTotal") + procKilobytes("/proc/meminfo", "SwapTotal");
    const auto suggested = static_cast<std::uint64_t>(std::llround(static_cast<double>(commit) / 83.33333333));
    r = runCli("wipe-memory");
    EXPECT_TRUE(contains(r.err, "Fill " + grouped(42 * suggested) + " bytes")) << r.err;

    for (const char* bad : {"abc", "3000", "-1", "''"}) {
        r = runCli(std::string("wipe-memory --yes --size ") + bad);
        EXPECT_EQ(r.code, 2) << bad;
        EXPECT_TRUE(contains(r.err, "--size")) << r.err;
    }
}

TEST(WipeMemoryCli, RunsToTheEndOrSaysThatTheFloorStoppedIt) {
    auto r = runCli("wipe-memory --yes --size 1.5");
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "");
    // 21 strings of 1.5 million two-byte characters.
    EXPECT_TRUE(r.err.ends_with("scourmill-cli: wipe-memory: 60.1 MiB of memory filled\n")) << r.err;

    r = runCli("wipe-memory --yes --size 1 --keep-free 1000000000");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, "stopped before the first pass")) << r.err;
    EXPECT_TRUE(contains(r.err, "less than 1,000,000,000 MiB of memory")) << r.err;
}

TEST(WipeMemoryCli, CtrlCEndsTheRunAtTheNextPassAndMeanwhileTheProcessIsFirstToGo) {
    testsupport::ScratchDir dir;
    const auto errors = dir.path() / "stderr.txt";
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // 50 MB a string: about a second and a half to fill all 21.
        const std::string command = "exec " + std::string(SCOURMILL_CLI) +
                                    " wipe-memory --yes --size 25 </dev/null 2>" + testsupport::shellQuoted(errors);
        ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    const std::string proc = "/proc/" + std::to_string(child);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (procKilobytes(proc + "/status", "VmRSS") < 150'000'000 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(testsupport::readFile(proc + "/oom_score_adj"), "1000\n");
    ::kill(child, SIGINT);
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status)) << "killed by the signal instead of stopping cleanly";
    EXPECT_EQ(WEXITSTATUS(status), 1);
    const std::string said = testsupport::readFile(errors);
    EXPECT_TRUE(contains(said, "interrupted after pass ")) << said;
    EXPECT_FALSE(contains(said, "after pass 21 of 21")) << said;
}
