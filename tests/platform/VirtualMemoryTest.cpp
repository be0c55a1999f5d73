#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

class VirtualMemoryTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::VirtualMemory& vm = p->virtualMemory();
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
};

TEST_F(VirtualMemoryTest, CommittedBlockIsZeroedWritableAndLockable) {
    auto* block = static_cast<char*>(vm.commit(3 * page));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[0], 0);
    std::memset(block, 0x5a, 3 * page);
    EXPECT_FALSE(vm.isBadRead(block, 3 * page));
    EXPECT_FALSE(vm.isBadWrite(block, 3 * page));
    if (vm.lock(block, 3 * page)) { // the locked-memory limit may be small
        EXPECT_TRUE(vm.unlock(block, 3 * page));
    }
    EXPECT_TRUE(vm.release(block));
    EXPECT_FALSE(vm.release(block)); // not ours any more
    EXPECT_TRUE(vm.isBadRead(block, 1));
}

TEST_F(VirtualMemoryTest, ProbesSeeGuardPagesAndReadOnlyPagesWithoutFaulting) {
    auto* area = static_cast<char*>(::mmap(nullptr, 3 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(area, MAP_FAILED);
    std::memset(area, 'x', 2 * page);
    ::mprotect(area + page, page, PROT_READ);
    ::mprotect(area + 2 * page, page, PROT_NONE);

    EXPECT_FALSE(vm.isBadRead(area, 2 * page));
    EXPECT_TRUE(vm.isBadRead(area, 2 * page + 1));
    EXPECT_FALSE(vm.isBadWrite(area, page));
    EXPECT_TRUE(vm.isBadWrite(area + page - 1, 2));
    EXPECT_TRUE(vm.isBadRead(nullptr, 1));
    EXPECT_FALSE(vm.isBadRead(nullptr, 0));

    // A text that runs into the guard page is bad; one whose NUL or max comes first is not.
    EXPECT_TRUE(vm.isBadString(area + 2 * page - 4, 100));
    EXPECT_FALSE(vm.isBadString(area + 2 * page - 4, 4));
    area[5] = '\0';
    EXPECT_FALSE(vm.isBadString(area, 100000));
    ::munmap(area, 3 * page);
}
