// The activity scan against the loop it replaces, on hand-made files and across the scan's buffer
// boundaries (random files are the fuzz program's).

#include "indexdat/ActivityScan.h"
#include "platform/Platform.h"
#include "tests/indexdat/ReferenceScan.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using testsupport::referenceScan;
using testsupport::ScratchDir;
using namespace std::string_literals;

namespace {

class ActivityScanTest : public ::testing::Test {
protected:
    std::unique_ptr<platform::Platform> p = platform::createNative();
    ScratchDir dir;

    std::vector<std::string> scanned(const std::string& content) {
        const auto path = dir.write("index.dat", content);
        std::vector<std::string> out;
        EXPECT_TRUE(indexdat::ActivityScan(p->rawFiles()).scan(path.string(), [&](std::string_view e) {
            out.emplace_back(e);
            return true;
        }));
        return out;
    }
};

using Entries = std::vector<std::string>;

} // namespace

TEST_F(ActivityScanTest, EndOfFileCutsAndNestedHitsFollowTheLoop) {
    const std::string binary = "http://x\x01\x02\xff" + std::string(200, 'y');
    const std::string far = "Cookie:a" + std::string(142, '\0') + "http://b";
    const std::string tail(150, '\0');
    const std::pair<std::string, Entries> cases[] = {
        // The last position probed is six bytes before the end: only "ftp://" fits there.
        {"xxhttp://", {"http://"}}, {"xxftp://", {"ftp://"}}, {"xxhttp:/", {}}, {"", {}},
        // A "Cookie:" less than 150 bytes before the end is the last hit; one 150 bytes before is not.
        {"Cookie:a\0http://b"s, {"Cookie:a"}}, {far, {"Cookie:a", "http://b"}},
        // An http hit near the end does not stop the loop: its Cookie probe completes the round.
        {"http://a ftp://b", {"http://a ftp://b", "ftp://b"}},
        // Entries end at a zero or after 150 bytes; the markers' case counts.
        {binary, {binary.substr(0, 150)}}, {"http://a\0b"s, {"http://a"}}, {"HTTP://a Ftp://b cookie:c", {}},
        // Nested and repeated markers each give an entry, in file order; without room behind it,
        // the outer "Cookie:" was the loop's last round.
        {"Cookie:http://ftp://a" + tail, {"Cookie:http://ftp://a", "http://ftp://a", "ftp://a"}},
        {"Cookie:http://ftp://a", {"Cookie:http://ftp://a"}},
        {"u@http://a\0u@http://a\0"s, {"http://a", "http://a"}},
    };
    for (const auto& [content, expected] : cases) {
        EXPECT_EQ(scanned(content), expected) << content;
        EXPECT_EQ(referenceScan(content), expected) << content;
    }
}

TEST_F(ActivityScanTest, AgreesWithTheLoopAcrossBufferBoundaries) {
    // Markers straddling every place where the scan refills its buffer (1 MiB apart).
    std::mt19937 rng(7);
    std::string s(3 * (1 << 20) + 500, 'z');
    for (std::size_t mib = 1; mib <= 3; ++mib)
        for (long delta = -310; delta < 200; delta += 3 + rng() % 9) {
            const std::size_t at = mib * (1 << 20) + delta;
            const char* marker = rng() % 3 == 0 ? "Cookie:" : rng() % 2 ? "http://" : "ftp://";
            std::memcpy(s.data() + at, marker, std::strlen(marker));
            if (rng() % 5 == 0)
                s[at + 20] = '\0';
        }
    std::memcpy(s.data() + s.size() - 100, "Cookie:end", 10);
    std::memcpy(s.data() + s.size() - 50, "http://never", 12);
    const Entries expected = referenceScan(s);
    EXPECT_GT(expected.size(), 100u);
    EXPECT_EQ(expected.back(), s.substr(s.size() - 100).substr(0, 100));
    EXPECT_EQ(scanned(s), expected);
}
