// The file object on a real file: the free-space wipe places every block with an absolute seek of
// two 32-bit halves, so a position past 4 GiB must reach the system whole.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"
#include "wipe/Random.h"

#include <gtest/gtest.h>

#include <filesystem>

TEST(RandomTest, AbsoluteSeeksTakeTheHighHalfAndANegativePositionIsNoError) {
    const auto platform = platform::createNative();
    testsupport::ScratchDir dir;
    const auto path = dir.path() / "w.bin";
    wipe::Random r(platform->rawFiles());
    r.OpenFile(path.string());
    r.SeekAbsolute(1, 0); // 4 GiB: high half 1, low half 0
    ASSERT_EQ(r.Raw().write("!", 1), 1u);
    EXPECT_EQ(std::filesystem::file_size(path), (std::uint64_t{1} << 32) + 1);
    r.SeekAbsolute(-1, -1); // refused by the system, reported by nobody
    r.CloseFile();
}
