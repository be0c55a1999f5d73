// The activity overwrite on real files: its exact result for the sizes where the block count
// rounds, and files it leaves alone.

#include "core/ProblemSink.h"
#include "indexdat/ActivityWipe.h"
#include "platform/Platform.h"
#include "tests/support/Recorders.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;

namespace {

std::string randomBytes(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    std::string s(n, '\0');
    for (char& c : s)
        c = static_cast<char>(rng());
    return s;
}

class ActivityWipeTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    ScratchDir dir;
    testsupport::RecordingSink problems;
    int progressCalls = 0;

    void wipe(const fs::path& path) {
        indexdat::WipeFileContents(*p, path.string(), [&](double) { return ++progressCalls > 0; }, &problems);
    }
};

} // namespace

TEST_F(ActivityWipeTest, KeepsTheFirst1024BytesAndBlanksTheRestToTheRoundedBlockCount) {
    const std::vector<std::pair<std::size_t, std::size_t>> sizes = {
        {512, 512}, {513, 2052}, {1536, 3076}, {2560, 3076}};
    for (const auto& [size, after] : sizes) {
        const std::string before = randomBytes(size, static_cast<unsigned>(size));
        const auto path = dir.write(std::to_string(size) + ".f", before);
        // A read-only record file is written all the same, and stays read-only.
        fs::permissions(path, fs::perms::owner_read, fs::perm_options::replace);
        wipe(path);
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read) << size;
        const std::string now = readFile(path);
        ASSERT_EQ(now.size(), after) << size;
        EXPECT_EQ(indexdat::lengthAfterWipe(size), after);
        const std::size_t kept = std::min<std::size_t>(size, 1024);
        EXPECT_EQ(now.substr(0, kept), before.substr(0, kept)) << size;
        if (size > 512)
            EXPECT_EQ(now.substr(1024), std::string(after - 1024, ' ')) << size;
        else
            EXPECT_EQ(now, before) << size;
    }
    EXPECT_TRUE(problems.items.empty());
    EXPECT_GT(progressCalls, 33); // a step per pass at least
}
