// wipe-memory as a user runs it: the question with the bytes it will fill, sizes it refuses, the
// stop at the memory floor, and Ctrl-C in the middle of a run, watched from outside through /proc.

#include "memory/MemoryWipe.h"
#include "platform/linux/MountTable.h"
#include "tests/support/Process.h"
#include "tests/support/ProcFields.h"
#include "tests/support/Scratch.h"
#include "tests/support/ScratchMount.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

using testsupport::procKilobytes;
using testsupport::contains;
using testsupport::runCli;

namespace {

/// A real memory cgroup made for one test with a memory limit and no swap, removed afterwards:
/// below this process's own group in a v1 memory hierarchy, or at the top of a v2 one whose top
/// hands the memory controller down. Its hierarchy's mount line goes into the scratch mount table
/// meanwhile, so that the platform sees it. Needs root.
class MemoryCgroup {
public:
    explicit MemoryCgroup(std::uint64_t limit) {
        if (::geteuid() != 0) {
            m_reason = "making a cgroup needs root";
            return;
        }
        std::string unified, memoryV1;
        std::istringstream lines(testsupport::readFile("/proc/self/cgroup"));
        for (std::string line; std::getline(lines, line);) {
            const auto path = line.substr(line.find(':', line.find(':') + 1) + 1);
            if (line.rfind("0::", 0) == 0)
                unified = path;
            else if (line.find(":memory:") != std::string::npos || line.find(",memory") != std::string::npos)
                memoryV1 = path;
        }
        const std::string table = testsupport::readFile("/proc/self/mountinfo");
        for (const auto& mount : platform::linux::parseMountInfo(table)) {
            const bool v1 = mount.fsType == "cgroup" && !memoryV1.empty() && mount.root == "/" &&
                            ("," + mount.superOptions + ",").find(",memory,") != std::string::npos;
            const bool v2 = mount.fsType == "cgroup2" && mount.root == "/" &&
                            testsupport::readFile(mount.mountPoint + "/cgroup.subtree_control").find("memory") != std::string::npos;
            if (!v1 && !v2)
                continue;
            m_v2 = v2;
            m_folder = mount.mountPoint + (v1 && memoryV1 != "/" ? memoryV1 : "") + "/scourmill-test-" + std::to_string(::getpid());
            std::istringstream rows(table);
            for (std::string row; std::getline(rows, row);)
                if (row.rfind(std::to_string(mount.id) + " ", 0) == 0)
                    m_line = row;
            break;
        }
        std::error_code error;
        if (m_folder.empty() || !std::filesystem::create_directory(m_folder, error)) {
            m_reason = "no memory cgroup can be made here";
            m_folder.clear();
            return;
        }
        write(m_v2 ? "memory.max" : "memory.limit_in_bytes", std::to_string(limit));
        write(m_v2 ? "memory.swap.max" : "memory.memsw.limit_in_bytes", std::to_string(m_v2 ? 0 : limit));
        m_id = m_line.substr(0, m_line.find(' '));
        testsupport::addMountTableLine(m_line);
    }
    ~MemoryCgroup() {
        if (m_folder.empty())
            return;
        testsupport::removeMountTableLine(m_id);
        ::rmdir(m_folder.c_str());
    }
    MemoryCgroup(const MemoryCgroup&) = delete;
    MemoryCgroup& operator=(const MemoryCgroup&) = delete;

    bool made() const { return !m_folder.empty(); }
    const std::string& reason() const { return m_reason; }
    /// A shell command that runs `command` inside the group, or ends with NotMoved when the system
    /// will not move a process into it.
    std::string inside(const std::string& command) const {
        return "sh -c " + testsupport::shellQuoted("echo $$ 2>/dev/null >" + m_folder + "/cgroup.procs || exit " +
                                                   std::to_string(NotMoved) + "; exec " + command);
    }
    static constexpr int NotMoved = 77;
    /// Processes the kernel's out-of-memory killer ended in the group.
    int oomKills() const {
        std::istringstream fields(testsupport::readFile(m_folder + (m_v2 ? "/memory.events" : "/memory.oom_control")));
        for (std::string key; fields >> key;)
            if (int n = 0; key == "oom_kill" && fields >> n)
                return n;
        return 0;
    }

private:
    void write(const char* name, const std::string& value) const { std::ofstream(m_folder + "/" + name) << value; }

    std::string m_folder, m_line, m_id, m_reason;
    bool m_v2 = false;
};

} // namespace

TEST(WipeMemoryCli, InAMemoryLimitedCgroupTheSuggestedRunFitsAndALargerOneStopsBeforeTheGroupRunsOut) {
    // Room for the least floor and 256 MiB more, however much the machine has.
    MemoryCgroup group(memory::MemoryWipe::MinimumFloor + (256ull << 20));
    if (!group.made())
        GTEST_SKIP() << group.reason();
    // The suggested size comes from the group: the run goes through (a sanitizer's own memory, its
    // shadow and its quarantine of freed strings, may stop it early, but never before a pass).
    const auto suggested = testsupport::runCommand(group.inside(std::string(SCOURMILL_CLI) + " wipe-memory --yes"));
    if (suggested.code == MemoryCgroup::NotMoved)
        GTEST_SKIP() << "the system does not let this process move into the cgroup it made";
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SCOURMILL_UNDER_ASAN
#endif
#endif
#ifdef SCOURMILL_UNDER_ASAN
    EXPECT_FALSE(contains(suggested.err, "before the first pass")) << suggested.err;
#else
    EXPECT_EQ(suggested.code, 0) << suggested.err;
#endif
    // 21 strings of 40 MB go far past the group's room: the run stops at the group's floor and
    // says that it was the group's limit.
    const auto r = testsupport::runCommand(group.inside(std::string(SCOURMILL_CLI) + " wipe-memory --yes --size 20"));
    EXPECT_EQ(r.code, 1) << "killed instead of stopping at the floor: " << r.err;
    EXPECT_TRUE(contains(r.err, "stopped after pass ")) << r.err;
    EXPECT_TRUE(contains(r.err, "of the group's limit")) << r.err;
    EXPECT_EQ(group.oomKills(), 0);
}

TEST(WipeMemoryCli, AsksWithTheBytesItWillFillRefusesNoSizeAndRunsToTheEndOrToTheFloor) {
    auto r = runCli("wipe-memory --size 10");
    EXPECT_EQ(r.code, 1); // no terminal to ask on: answered No, nothing filled
    EXPECT_TRUE(contains(r.err, "Fill 420,000,000 bytes of memory")) << r.err;
    r = runCli("wipe-memory --yes --size -1"); // a number, yet no size
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(contains(r.err, "--size")) << r.err;

    r = runCli("wipe-memory --yes --size 1.5");
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "");
    // 21 strings of 1.5 million two-byte characters.
    EXPECT_TRUE(r.err.ends_with("scourmill-cli: wipe-memory: 60.1 MiB of memory filled\n")) << r.err;

    r = runCli("wipe-memory --yes --size 1 --keep-free 1000000000");
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.err, "stopped before the first pass")) << r.err;
    EXPECT_TRUE(contains(r.err, "less than 1,000,000,000 MiB of memory")) << r.err;
}

TEST(WipeMemoryCli, CtrlCEndsTheRunAtTheNextPass) {
    testsupport::ScratchDir dir;
    const auto errors = dir.path() / "stderr.txt";
    // 50 MB a string: about a second and a half to fill all 21.
    testsupport::BackgroundCli wipe("wipe-memory --yes --size 25 2>" + testsupport::shellQuoted(errors));
    const std::string proc = "/proc/" + std::to_string(wipe.pid());
    testsupport::waitUntil([&] { return procKilobytes(proc + "/status", "VmRSS") >= 150'000'000; });
    EXPECT_EQ(wipe.stop(SIGINT), 1) << "killed by the signal instead of stopping cleanly";
    const std::string said = testsupport::readFile(errors);
    EXPECT_TRUE(contains(said, "interrupted after pass ")) << said;
    EXPECT_FALSE(contains(said, "after pass 21 of 21")) << said;
}
