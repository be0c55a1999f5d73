// Blocks of process memory and the probes of Windows: VirtualAlloc blocks, and VirtualQuery-based
// probes over read-only and inaccessible pages that never fault.

#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>

namespace {

std::size_t pageSize() {
    SYSTEM_INFO info{};
    ::GetSystemInfo(&info);
    return info.dwPageSize;
}

} // namespace

class WindowsMemoryTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::VirtualMemory& vm = p->virtualMemory();
    const std::size_t page = pageSize();
};

TEST_F(WindowsMemoryTest, CommittedBlocksAreZeroedLockableAndGoBackWhole) {
    auto* block = static_cast<char*>(vm.commit(3 * page));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block[0], 0);
    std::memset(block, 0x5a, 3 * page);
    if (vm.lock(block, 3 * page)) { // the working-set quota may be small
        EXPECT_TRUE(vm.unlock(block, 3 * page));
    }
    vm.lock(block, 3 * page);
    EXPECT_TRUE(vm.decommit(block, 0)); // a zero size at the start: the whole block, locked or not
    EXPECT_TRUE(vm.isBadRead(block, 1));
    EXPECT_TRUE(vm.release(block));
    EXPECT_FALSE(vm.release(block)); // not ours any more
}

TEST_F(WindowsMemoryTest, ProbesSeeReadOnlyAndInaccessiblePagesWithoutFaulting) {
    auto* area = static_cast<char*>(::VirtualAlloc(nullptr, 3 * page, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    ASSERT_NE(area, nullptr);
    std::memset(area, 'x', 2 * page);
    DWORD old = 0;
    ::VirtualProtect(area + page, page, PAGE_READONLY, &old);
    ::VirtualProtect(area + 2 * page, page, PAGE_NOACCESS, &old);

    EXPECT_FALSE(vm.isBadRead(area, 2 * page));
    EXPECT_TRUE(vm.isBadRead(area, 2 * page + 1));
    EXPECT_FALSE(vm.isBadWrite(area, page));
    EXPECT_TRUE(vm.isBadWrite(area + page - 1, 2));
    EXPECT_TRUE(vm.isBadRead(reinterpret_cast<void*>(~std::uintptr_t{0} - 8), 100)); // wraps around

    // A text that runs into the inaccessible page is bad; one whose NUL or limit comes first is not.
    EXPECT_TRUE(vm.isBadString(area + 2 * page - 4, 100));
    EXPECT_FALSE(vm.isBadString(area + 2 * page - 4, 4));
    area[5] = '\0';
    EXPECT_FALSE(vm.isBadString(area, 100000));
    ::VirtualFree(area, 0, MEM_RELEASE);
}
