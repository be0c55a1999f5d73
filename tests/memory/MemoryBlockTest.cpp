#include "memory/MemoryBlock.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// The real virtual memory, with a note of each block call and the length it was given.
class Noting final : public platform::VirtualMemory {
public:
    explicit Noting(platform::VirtualMemory& real) : m_real(real) {}

    void* commit(std::size_t size) override {
        calls.push_back("commit " + std::to_string(size));
        return m_real.commit(size);
    }
    bool lock(void* a, std::size_t size) override {
        calls.push_back("lock " + std::to_string(size));
        return m_real.lock(a, size);
    }
    bool unlock(void* a, std::size_t size) override {
        calls.push_back("unlock " + std::to_string(size));
        return m_real.unlock(a, size);
    }
    bool decommit(void* a, std::size_t size) override {
        calls.push_back("decommit " + std::to_string(size));
        return m_real.decommit(a, size);
    }
    bool release(void* a) override {
        calls.push_back("release");
        return m_real.release(a);
    }
    bool isBadRead(const void* a, std::size_t size) override { return m_real.isBadRead(a, size); }
    bool isBadWrite(void* a, std::size_t size) override { return m_real.isBadWrite(a, size); }
    bool isBadString(const char* a, std::size_t max) override { return m_real.isBadString(a, max); }

    std::vector<std::string> calls;

private:
    platform::VirtualMemory& m_real;
};

class MemoryBlockTest : public ::testing::Test {
protected:
    std::uintptr_t at(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }

    std::unique_ptr<platform::Platform> p = platform::createNative();
    platform::VirtualMemory& vm = p->virtualMemory();
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
};

TEST_F(MemoryBlockTest, CopiesInAndOutOnlyWhenBothRangesAreUsable) {
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

    // A read-only page cannot be written to, an unmapped one not read from: refused, no fault.
    auto* area = static_cast<char*>(::mmap(nullptr, 2 * page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(area, MAP_FAILED);
    ::mprotect(area + page, page, PROT_NONE); // a hole that stays reserved for the test
    block.ReadFrom(at(area), 4);
    EXPECT_EQ(area[0], 0);
    block.WriteTo(at(area + page - 2), 4);
    block.ReadFrom(at(out), 6);
    EXPECT_STREQ(out, "entry");
    // The probes ask whether memory can be used, not whose it is: a length past the block's end is
    // refused only where the pages after it are not mapped, so that is not asked here.
    block.WriteTo(at(in), -1);
    block.ReadFrom(at(out), 6);
    EXPECT_STREQ(out, "entry");
    ::munmap(area, 2 * page);
}

TEST_F(MemoryBlockTest, ExtractStringStopsAtTheTextOrTheLimitAndGivesNothingForBadPointers) {
    memory::MemoryBlock block(vm);
    const char text[] = "http://example.test/page";
    EXPECT_EQ(block.ExtractString(at(text), sizeof text), text);
    EXPECT_EQ(block.ExtractString(at(text), 11), "http://exam");
    EXPECT_EQ(block.ExtractString(at(""), 10), "");
    EXPECT_EQ(block.ExtractString(0, 10), "");

    auto* area = static_cast<char*>(::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(area, MAP_FAILED);
    ::mprotect(area + page, page, PROT_NONE);
    std::memset(area, 'x', page); // no NUL before the hole
    EXPECT_EQ(block.ExtractString(at(area + page - 3), 100), "");
    EXPECT_EQ(block.ExtractString(at(area + page), 100), "");
    ::munmap(area, 2 * page);
}

TEST_F(MemoryBlockTest, EachAllocationAndTheEndGiveTheEarlierBlockBack) {
    std::uintptr_t first = 0;
    std::uintptr_t second = 0;
    {
        memory::MemoryBlock block(vm);
        block.ReleaseMemory(); // holding none: nothing happens
        block.Allocate(static_cast<std::int32_t>(3 * page));
        first = block.Handle();
        ASSERT_NE(first, 0u);
        block.Allocate(100);
        second = block.Handle();
        ASSERT_NE(second, 0u);
        EXPECT_TRUE(vm.isBadRead(reinterpret_cast<void*>(first), 1) || first == second);
        EXPECT_FALSE(vm.isBadWrite(reinterpret_cast<void*>(second), 100));
        block.Allocate(0); // a failed allocation leaves none
        EXPECT_EQ(block.Handle(), 0u);
        block.Allocate(100);
        second = block.Handle();
    }
    EXPECT_FALSE(vm.release(reinterpret_cast<void*>(second))); // already given back
}

TEST_F(MemoryBlockTest, GivesEachBlockBackInThreeStepsWithTheLengthNeverSet) {
    Noting noting(vm);
    {
        memory::MemoryBlock block(noting);
        block.Allocate(static_cast<std::int32_t>(2 * page));
        block.Allocate(100);
    }
    const std::string two = std::to_string(2 * page);
    const std::vector<std::string> expected = {
        "commit " + two, "lock " + two, "unlock 0", "decommit 0", "release",
        "commit 100",    "lock 100",    "unlock 0", "decommit 0", "release",
    };
    EXPECT_EQ(noting.calls, expected);
}

} // namespace
