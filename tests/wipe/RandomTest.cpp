// The file object on real files: its numbered errors and their texts, reads past the end, and both
// kinds of seek.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"
#include "wipe/FileError.h"
#include "wipe/Random.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>

using testsupport::readFile;
using testsupport::ScratchDir;
using wipe::FileError;
using wipe::Random;

namespace {

int errorNumber(const std::function<void()>& call, std::string* description = nullptr) {
    try {
        call();
    } catch (const FileError& e) {
        if (description)
            *description = e.description();
        return e.number();
    }
    return 0;
}

struct RandomTest : ::testing::Test {
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    ScratchDir dir;
};

} // namespace

TEST_F(RandomTest, ClosedObjectRaises45603AndASecondOpenNames45601TheFirstFile) {
    Random r(platform->rawFiles());
    EXPECT_EQ(errorNumber([&] { r.WriteBytes(std::vector<std::uint8_t>{1}); }), 45603);

    const auto kept = dir.write("kept.bin", "abcd");
    r.OpenFile(kept.string());
    std::string text;
    EXPECT_EQ(errorNumber([&] { r.OpenFile((dir.path() / "other").string()); }, &text), 45601);
    EXPECT_EQ(text, "The file '" + kept.string() + "' is already open.");
    // What lies past the end reads as zeros.
    EXPECT_EQ(r.ReadBytes(10), (std::vector<std::uint8_t>{'a', 'b', 'c', 'd', 0, 0, 0, 0, 0, 0}));
    r.CloseFile();
    EXPECT_EQ(readFile(kept), "abcd");
}

TEST_F(RandomTest, WritesSeeksAndAutoFlush) {
    const auto path = dir.path() / "w.bin";
    Random r(platform->rawFiles());
    r.OpenFile(path.string());
    r.AutoFlush(true);
    r.WriteBytes(std::vector<std::uint8_t>{'0', '1', '2', '3', '4', '5'});
    EXPECT_EQ(readFile(path), "012345");
    r.SeekAbsolute(0, 1);
    r.WriteBytes(std::vector<std::uint8_t>{'x'});
    r.SeekRelative(1.5f); // rounds half to even: 2, so from 2 to 4
    r.WriteBytes(std::vector<std::uint8_t>{'y'});
    r.SeekRelative(-2.5f); // -2: from 5 to 3
    r.WriteBytes(std::vector<std::uint8_t>{'z'});
    EXPECT_EQ(readFile(path), "0x2zy5");

    std::string text;
    EXPECT_EQ(errorNumber([&] { r.SeekRelative(-100.0f); }, &text), 45604);
    EXPECT_EQ(text, "Seek Error.\r\nError " + std::to_string(EINVAL) + ".\r\n" + std::to_string(EINVAL));
    EXPECT_THROW(r.SeekRelative(3e9f), std::overflow_error);

    r.SeekAbsolute(1, 0); // 4 GiB: high half 1, low half 0
    r.WriteBytes(std::vector<std::uint8_t>{'!'});
    EXPECT_EQ(std::filesystem::file_size(path), (std::uint64_t{1} << 32) + 1);
    r.SeekAbsolute(-1, -1); // a negative position: refused by the system, reported by nobody
}
