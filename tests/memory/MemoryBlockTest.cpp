#include "memory/MemoryBlock.h"
#include "platform/Platform.h"
#include "tests/support/ProcFields.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace {

class MemoryBlockTest : public ::testing::Test {
protected:
    std::uintptr_t at(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::VirtualMemory& vm = p->virtualMemory();
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
};

TEST_F(MemoryBlockTest, CopiesAndExtractsOnlyWhereBothRangesAreUsable) {
    memory::MemoryBlock block(vm);
    char out[8] = "-------";
    block.ReadFrom(at(out), 4); // holds no block yet: nothing copied
    EXPECT_STREQ(out, "-------");

    block.Allocate(16);
    ASSERT_NE(block.Handle(), 0u);
    const char in[] = "entry";
    block.WriteTo(at(in), sizeof in);
    block.ReadFrom(at(out), sizeof in);
    EXPECT_STREQ(out, "entry");
    const char text[] = "http://example.test/page";
    EXPECT_EQ(block.ExtractString(at(text), sizeof text), text);
    EXPECT_EQ(block.ExtractString(at(text), 11), "http://exam");
    EXPECT_EQ(block.ExtractString(at(""), 10), "");
    EXPECT_EQ(block.ExtractString(0, 10), "");

    // A read-only page cannot be written to, an unmapped one not read from: refused, no fault.
    auto* area = static_cast<char*>(::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(area, MAP_FAILED);
    ::mprotect(area + page, page, PROT_NONE); // a hole that stays reserved for the test
    std::memset(area, 'x', page);             // no NUL before the hole
    ::mprotect(area, page, PROT_READ);
    block.ReadFrom(at(area), 4);
    EXPECT_EQ(area[0], 'x');
    block.WriteTo(at(area + page - 2), 4);
    block.ReadFrom(at(out), 6);
    EXPECT_STREQ(out, "entry");
    EXPECT_EQ(block.ExtractString(at(area + page - 3), 100), "");
    EXPECT_EQ(block.ExtractString(at(area + page), 100), "");
    ::munmap(area, 2 * page);
}

TEST_F(MemoryBlockTest, EachAllocationAndTheEndGiveTheEarlierBlockBackWithoutLockingMore) {
    const auto locked = [] { return testsupport::procKilobytes("/proc/self/status", "VmLck"); };
    const std::uint64_t lockedBefore = locked();
    std::uintptr_t last = 0;
    {
        memory::MemoryBlock block(vm), other(vm);
        block.Allocate(static_cast<std::int32_t>(40 * page));
        const std::uintptr_t first = block.Handle();
        ASSERT_NE(first, 0u);
        block.Allocate(100);
        EXPECT_TRUE(vm.isBadRead(reinterpret_cast<void*>(first), 1));
        EXPECT_FALSE(vm.isBadWrite(reinterpret_cast<void*>(block.Handle()), 100));
        block.Allocate(0); // a failed allocation leaves none
        EXPECT_EQ(block.Handle(), 0u);
        for (int i = 0; i < 50; ++i) { // as a listing does, one buffer per entry
            block.Allocate(100 + i);
            other.Allocate(static_cast<std::int32_t>((i % 3 + 1) * page));
        }
        last = block.Handle();
    }
    EXPECT_FALSE(vm.release(reinterpret_cast<void*>(last))); // already given back
    // Only the one small block kept for the next use may stay locked.
    EXPECT_LE(locked(), lockedBefore + 16 * page);
}

} // namespace
