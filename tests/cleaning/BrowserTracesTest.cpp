// The cache wipe and the URL history collection on copies of real browser profiles
// (tests/data/browsers): what they delete is gone when the profiles are read afresh, and the
// collection keeps the quirks of the object it stands for.

#include "cleaning/CURLHistory.h"
#include "cleaning/TraceCleaner.h"
#include "tests/cleaning/TraceRecorders.h"
#include "tests/platform/BrowserHome.h"
#include "tests/support/CachedAddresses.h"
#include "tests/support/Scratch.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace testsupport;
using cleaning::CURLHistory;

namespace {

struct BrowserTraces : ::testing::Test {
    BrowserHome home;
    TraceRecorder view;
    RecordingSink problems;
    cleaning::TraceCleaner cleaner{home.platform(), view, &problems};
};

} // namespace

TEST_F(BrowserTraces, WipeCacheDeletesOnlyTheListedAddressesFromEveryProfileThatCachedThem) {
    const auto all = testsupport::cachedAddresses(home.platform().urlCache());
    ASSERT_FALSE(all.empty());
    // Only what is listed goes: an entry listed by hand stands for a list shown earlier.
    view.addLine(all.front());
    cleaner.DeleteListedCacheEntries();
    EXPECT_EQ(view.lineCount(), 0u);
    auto others = all;
    std::erase(others, all.front()); // the address goes from every profile that cached it
    EXPECT_EQ(testsupport::cachedAddresses(home.freshPlatform()->urlCache()), others);

    cleaner.ShowCache();
    cleaner.DeleteListedCacheEntries();
    EXPECT_TRUE(testsupport::cachedAddresses(home.freshPlatform()->urlCache()).empty());
    EXPECT_TRUE(problems.items.empty());
}

TEST_F(BrowserTraces, HistoryCollectionFollowsTheStoreAndItsDocumentedQuirks) {
    CURLHistory history(home.platform());
    const auto stored = listHistory(home.platform().urlHistory());
    ASSERT_EQ(history.Count(), static_cast<std::int32_t>(stored.size()));
    std::int32_t i = 1;
    for (const auto& item : history.NewEnum())
        EXPECT_EQ(item->URL(), stored[static_cast<std::size_t>(i++ - 1)].pwcsUrl);

    // Outside 1..Count fails.
    const std::int32_t count = history.Count();
    EXPECT_THROW(history.Item(0), std::out_of_range);
    EXPECT_THROW(history.Remove(count + 1), std::out_of_range);

    // AddURL leaves the collection as it is until the next Refresh.
    const std::string added = "http://added.example/scourmill-added-6c1d.html";
    history.AddURL(added, "Added", 0);
    EXPECT_EQ(history.Count(), count);
    history.Refresh();
    EXPECT_EQ(history.Count(), count + 1);

    // Remove(1) deletes from the store and moves the second entry up, without a re-read.
    const std::string first = history.Item(1)->URL();
    const std::string second = history.Item(2)->URL();
    const auto firstItem = history.Item(1);
    history.Remove(1);
    EXPECT_EQ(history.Count(), count);
    EXPECT_EQ(history.Item(1)->URL(), second);
    EXPECT_EQ(firstItem->URL(), first); // an item taken out keeps its record
    for (const auto& record : listHistory(home.freshPlatform()->urlHistory()))
        EXPECT_NE(record.pwcsUrl, first);

    // Clear empties the store; a new collection on it holds nothing.
    history.Clear();
    EXPECT_EQ(history.Count(), 0);
    EXPECT_EQ(CURLHistory(*home.freshPlatform()).Count(), 0);
}

TEST_F(BrowserTraces, ReadingADateTwiceInAZoneAheadOfUtcMovesItByTheOffset) {
    setEnv("TZ", "<+02>-2"); // two hours ahead of UTC, no daylight saving; no other case reads local time
    CURLHistory history(home.platform());
    ASSERT_GE(history.Count(), 1);
    const auto item = history.Item(1);
    const double first = item->LastVisited();
    const double second = item->LastVisited();
    EXPECT_NEAR(second - first, 2.0 / 24, 1e-6);
    // The first read is the true local time: two hours after the stored UTC time.
    history.Refresh();
    const auto record = listHistory(home.platform().urlHistory()).front();
    EXPECT_NEAR(first - cleaning::URLHistoryItem::toVariantDate(record.ftLastVisited), 2.0 / 24, 1e-6);
    ::unsetenv("TZ");
}

TEST(VariantDate, CountsDaysFromTheLastDaysOf1899) {
    const auto at = [](std::int64_t secondsSince1601) {
        const auto ticks = static_cast<std::uint64_t>(secondsSince1601) * 10'000'000;
        return cleaning::URLHistoryItem::toVariantDate({static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)});
    };
    constexpr std::int64_t base = 109'205LL * 86'400; // 1899-12-30 00:00 in seconds since 1601
    EXPECT_EQ(at(base), 0.0);
    EXPECT_DOUBLE_EQ(at(base + 2 * 86'400 + 43'200), 2.5);     // 1900-01-01 12:00
    EXPECT_DOUBLE_EQ(at(base - 86'400 + 6 * 3'600), -1.25);    // 1899-12-29 06:00
    EXPECT_DOUBLE_EQ(at(base + 45'658LL * 86'400), 45'658.0);  // 2025-01-01
}
