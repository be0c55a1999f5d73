// The memory limit of this process's control groups, read from scratch cgroup folders that a
// scratch mount table lists: v2 and v1 control files, limits set above the process's own group,
// swap allowed or not, page cache the group can drop, and mounts that show only part of a hierarchy.

#include "platform/linux/CgroupMemory.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

namespace fs = std::filesystem;
using platform::MemoryLimit;
using platform::linux::cgroupMemoryLimit;

namespace {

struct CgroupTree {
    testsupport::ScratchDir dir;
    fs::path table = dir.path() / "mountinfo";

    /// Lists a cgroup filesystem of `type` mounted at `point`, showing the hierarchy from `root` on.
    fs::path mount(const std::string& type, const std::string& root, const std::string& point, const std::string& options) {
        const fs::path at = dir.path() / point;
        fs::create_directories(at);
        std::ofstream(table, std::ios::app) << "90 1 0:90 " << root << " " << at.string() << " rw,nosuid - " << type
                                            << " " << type << " " << options << "\n";
        return at;
    }
    /// Writes control files into `folder`.
    static void set(const fs::path& folder, const std::map<std::string, std::string>& files) {
        fs::create_directories(folder);
        for (const auto& [name, value] : files)
            std::ofstream(folder / name, std::ios::trunc) << value << "\n";
    }
    std::optional<MemoryLimit> limit(const std::string& procCgroup, std::uint64_t swapFree) const {
        return cgroupMemoryLimit(procCgroup, table.string(), swapFree);
    }
};

::testing::AssertionResult is(const std::optional<MemoryLimit>& got, std::uint64_t limit, std::uint64_t headroom) {
    if (!got)
        return ::testing::AssertionFailure() << "no limit";
    if (got->limit != limit || got->headroom != headroom)
        return ::testing::AssertionFailure() << "limit " << got->limit << ", headroom " << got->headroom;
    return ::testing::AssertionSuccess();
}

} // namespace

TEST(CgroupMemory, TheTightestLevelFromTheOwnGroupUpBindsWithTheSwapEachAllows) {
    CgroupTree tree;
    const fs::path top = tree.mount("cgroup2", "/", "unified", "rw,nsdelegate");
    const std::string self = "0::/user.slice/app.scope\n";
    const fs::path app = top / "user.slice/app.scope", slice = top / "user.slice";
    tree.set(app, {{"memory.max", "max"}, {"memory.current", "100"}});
    EXPECT_FALSE(tree.limit(self, 50));

    // A limit above the process's own group binds it; without a swap limit of its own the group
    // may page out to all the free swap.
    tree.set(slice, {{"memory.max", "1000"}, {"memory.current", "400"}});
    EXPECT_TRUE(is(tree.limit(self, 50), 1000, 650));
    tree.set(slice, {{"memory.swap.max", "20"}, {"memory.swap.current", "5"}});
    EXPECT_TRUE(is(tree.limit(self, 50), 1000, 615));

    // The own group's limit, when tighter, and its swap forbidden.
    tree.set(app, {{"memory.max", "300"}, {"memory.current", "100"}, {"memory.swap.max", "0"}, {"memory.swap.current", "0"}});
    EXPECT_TRUE(is(tree.limit(self, 50), 300, 200));
    // Its inactive page cache is dropped before the limit ends anything: room, not use.
    tree.set(app, {{"memory.stat", "anon 40\ninactive_file 60\nactive_file 0"}});
    EXPECT_TRUE(is(tree.limit(self, 50), 300, 260));
    tree.set(app, {{"memory.stat", "inactive_file 0"}});
    // A group over its limit (the kernel lets it be, briefly) has no room left.
    tree.set(app, {{"memory.current", "350"}});
    EXPECT_TRUE(is(tree.limit(self, 50), 300, 0));
}

TEST(CgroupMemory, VersionOneGroupsAndMountsThatShowPartOfTheTree) {
    CgroupTree tree;
    // A container's view: the memory hierarchy mounted from its own group on.
    const fs::path memory = tree.mount("cgroup", "/docker/c0ffee", "memory", "rw,memory");
    const fs::path cpu = tree.mount("cgroup", "/", "cpu", "rw,cpu");
    const std::string self = "5:cpu,cpuacct:/\n4:memory:/docker/c0ffee/inner\n0::/\n";
    tree.set(memory / "inner", {{"memory.limit_in_bytes", "9223372036854771712"}, {"memory.usage_in_bytes", "10"}});
    tree.set(cpu, {{"memory.limit_in_bytes", "1"}, {"memory.usage_in_bytes", "0"}}); // no memory controller
    EXPECT_FALSE(tree.limit(self, 1000));

    tree.set(memory, {{"memory.limit_in_bytes", "5000"}, {"memory.usage_in_bytes", "1000"}});
    EXPECT_TRUE(is(tree.limit(self, 1000), 5000, 5000));
    // Memory and swap together, where swap is accounted.
    tree.set(memory, {{"memory.memsw.limit_in_bytes", "4500"}, {"memory.memsw.usage_in_bytes", "1000"}});
    EXPECT_TRUE(is(tree.limit(self, 1000), 5000, 3500));
    // The hierarchy's inactive page cache (its own "inactive_file" leaves out the subgroups').
    tree.set(memory, {{"memory.stat", "inactive_file 1\ntotal_inactive_file 500"}});
    EXPECT_TRUE(is(tree.limit(self, 1000), 5000, 4000));

    // A group the mount does not show, and no cgroup line at all.
    EXPECT_FALSE(tree.limit("4:memory:/docker/other\n", 1000));
    EXPECT_FALSE(tree.limit("", 1000));

    // Where both hierarchies limit, the tighter one.
    const fs::path unified = tree.mount("cgroup2", "/", "unified", "rw");
    tree.set(unified, {{"memory.max", "2000"}, {"memory.current", "1900"}, {"memory.swap.max", "0"}});
    EXPECT_TRUE(is(tree.limit(self, 1000), 2000, 100));
}
