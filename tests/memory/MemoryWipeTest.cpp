// The memory wipe on this machine's real memory: what the run shows, how much it really takes
// (the peak resident size from /proc), how it ends early, and the size entry's rules.

#include "memory/MemoryWipe.h"
#include "platform/Platform.h"
#include "tests/support/ProcFields.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

/// A field of /proc/self/status, in bytes.
std::uint64_t statusBytes(const std::string& field) {
    return testsupport::procKilobytes("/proc/self/status", field);
}

int oomScoreAdj() {
    return std::stoi(testsupport::readFile("/proc/self/oom_score_adj"));
}

class Recorder : public memory::MemoryWipeView {
public:
    void fillMoved(int x) override { fills.push_back(x); }
    void passDone(int pass) override {
        passes.push_back(pass);
        scores.push_back(oomScoreAdj());
        if (onPass)
            onPass(pass);
    }
    void pumpEvents() override {}
    bool interrupted() override { return stop; }

    std::vector<int> fills;
    std::vector<int> passes;
    std::vector<int> scores;
    bool stop = false;
    std::function<void(int)> onPass;
};

class MemoryWipeTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    Recorder view;
    memory::MemoryWipe wipe{*p, view};
};

TEST_F(MemoryWipeTest, FillsTwentyOneStringsAndReallyHoldsThemAllAtThePeak) {
    constexpr std::int32_t Size = 4'000'000; // 8 MB a string, 168 MB held at the peak
    const int scoreBefore = oomScoreAdj();
    // Writing 5 to clear_refs starts the peak resident size afresh from what is resident now.
    std::ofstream("/proc/self/clear_refs") << "5";
    const std::uint64_t residentBefore = statusBytes("VmRSS");

    const auto result = wipe.WipeMemory(Size);

    EXPECT_EQ(result.end, memory::WipeEnd::Completed);
    EXPECT_EQ(result.lastPass, 20);
    const std::uint64_t peak = statusBytes("VmHWM");
    EXPECT_GE(peak - residentBefore, 42ull * Size) << "the blanks were not all written";
    // The track's fill moves from zero length to full, one step a pass.
    ASSERT_EQ(view.fills.size(), 21u);
    EXPECT_EQ(view.fills.back(), memory::MemoryWipe::TrackEnd);
    // The first process the system would end while the run holds memory; put back afterwards.
    EXPECT_EQ(view.scores, std::vector<int>(21, 1000));
    EXPECT_EQ(oomScoreAdj(), scoreBefore);
}

TEST_F(MemoryWipeTest, ANegativeSizeOrTheFloorEndsTheRunAsIfMemoryHadRunOut) {
    // A negative size is refused like a failed allocation: the quiet end in the first pass.
    auto result = wipe.WipeMemory(-1'000'000);
    EXPECT_EQ(result.end, memory::WipeEnd::OutOfMemory);
    EXPECT_EQ(result.lastPass, -1);
    EXPECT_EQ(view.fills, std::vector<int>{memory::MemoryWipe::TrackStart});

    // A floor above everything the machine has is reached before the first string.
    wipe.setFloor(1ull << 60);
    result = wipe.WipeMemory(1'000'000);
    EXPECT_EQ(result.end, memory::WipeEnd::FloorReached);
    EXPECT_EQ(result.lastPass, -1);
    EXPECT_TRUE(view.passes.empty()); // the counter keeps what it showed

    // Raised in the middle of a run, the floor ends it at the next string; the counter shows the
    // last pass done.
    Recorder later;
    memory::MemoryWipe raised(*p, later);
    later.onPass = [&](int pass) {
        if (pass == 3)
            raised.setFloor(1ull << 60);
    };
    result = raised.WipeMemory(1'000'000);
    EXPECT_EQ(result.end, memory::WipeEnd::FloorReached);
    EXPECT_EQ(later.passes.back(), 3);
    wipe.setFloor(1);
    EXPECT_EQ(wipe.floor(), memory::MemoryWipe::MinimumFloor);
}

TEST_F(MemoryWipeTest, StopRequestEndsTheRunAtTheNextCheck) {
    view.onPass = [&](int pass) { view.stop = pass == 5; };
    auto result = wipe.WipeMemory(100'000);
    EXPECT_EQ(result.end, memory::WipeEnd::Interrupted);
    EXPECT_EQ(result.lastPass, 5);
    EXPECT_EQ(view.fills.size(), 6u);
}

TEST(MemoryWipeSize, EntryIsMillionsOfCharactersAndAnythingElseIsZero) {
    EXPECT_EQ(memory::arraySize(" +2e1 "), 20'000'000);
    EXPECT_EQ(memory::arraySize("2147.483647"), 2147483647);
    EXPECT_EQ(memory::arraySize("0.0000025"), 2); // halves to the even neighbour
    for (const char* bad : {"abc", "", "3000", "2147.4836475", "1.5x", "nan", "1,5"}) {
        EXPECT_FALSE(memory::parseArraySize(bad)) << bad;
        EXPECT_EQ(memory::arraySize(bad), 0) << bad;
    }
    // A suggestion beyond the largest size is cut to it.
    EXPECT_EQ(memory::suggestedSize(memory::suggestedArraySize(1ull << 40)), 2147483647);
}

} // namespace
