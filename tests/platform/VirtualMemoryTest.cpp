#include "platform/Platform.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

class VirtualMemoryTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::VirtualMemory& vm = p->virtualMemory();
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
};

TEST_F(VirtualMemoryTest, CommittedBlocksAreZeroedAndGivenBackAndProbesSeeAFileMappedPastItsEnd) {
    // A small block may be kept for the next commit, a large one is unmapped at once; either way
    // what comes back from commit() is zeroed, and a released block is no longer ours.
    for (const std::size_t size : {3 * page, 40 * page}) {
        auto* block = static_cast<char*>(vm.commit(size));
        ASSERT_NE(block, nullptr);
        std::memset(block, 0x5a, size);
        EXPECT_TRUE(vm.release(block));
        auto* again = static_cast<char*>(vm.commit(size));
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(std::count(again, again + size, 0), static_cast<long>(size));
        EXPECT_TRUE(vm.release(again));
    }

    // A zero-length decommit drops a whole locked block; fresh zero pages stand in its place.
    auto* locked = static_cast<char*>(vm.commit(2 * page));
    std::memset(locked, 0x5a, 2 * page);
    vm.lock(locked, 2 * page);
    EXPECT_TRUE(vm.decommit(locked, 0));
    EXPECT_EQ(locked[0], 0);
    EXPECT_EQ(locked[2 * page - 1], 0);
    EXPECT_TRUE(vm.release(locked));

    // Protected and unmapped pages are the memory block's tests (tests/memory); a file mapped past
    // its end is what they do not show. The mapping says "readable", but touching the page past
    // the file's end raises SIGBUS: the probes must see that without faulting.
    testsupport::ScratchDir dir;
    const int fd = ::open(dir.write("short", "abc").c_str(), O_RDWR);
    ASSERT_GE(fd, 0);
    auto* file = static_cast<char*>(::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
    ::close(fd);
    ASSERT_NE(file, MAP_FAILED);
    EXPECT_FALSE(vm.isBadString(file, 2 * page)); // "abc" then zeros up to the page's end
    EXPECT_TRUE(vm.isBadRead(file + page, 1));
    EXPECT_TRUE(vm.isBadWrite(file, page + 1));
    ::munmap(file, 2 * page);
}
