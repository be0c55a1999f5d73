// Profiles that a browser holds are left whole by the cache and the history, and named.

#include "tests/platform/BrowserHome.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <sqlite3.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace testsupport;

namespace {

std::string hostName() {
    char host[256] = {};
    ::gethostname(host, sizeof host - 1);
    return host;
}

/// Everything a full clean asks of the cache and the history; the platform's answers.
struct CleanAnswers {
    std::size_t cacheEntries = 0;
    bool entryDeleted = false;
    std::size_t historyEntries = 0;
    bool urlDeleted = false;
    bool cleared = false;
    std::vector<std::string> cacheInUse, historyInUse;
};

CleanAnswers cleanEverything(platform::Platform& platform) {
    CleanAnswers a;
    const auto urls = listCache(platform.urlCache());
    a.cacheEntries = urls.size();
    a.entryDeleted = platform.urlCache().deleteEntry(visitedPages()[0].url);
    for (const std::string& url : urls)
        platform.urlCache().deleteEntry(url);
    a.cacheInUse = platform.urlCache().storesInUse();
    a.historyEntries = listHistory(platform.urlHistory()).size();
    a.urlDeleted = platform.urlHistory().deleteUrl(visitedPages()[1].url, 0);
    a.cleared = platform.urlHistory().clearHistory();
    a.historyInUse = platform.urlHistory().storesInUse();
    return a;
}

} // namespace

TEST(BrowserInUse, LiveLocksKeepBothProfilesByteForByte) {
    BrowserHome home;
    // Any live process makes a lock current; these names are ones no browser watcher looks for,
    // so tests running beside this one see no browser start or stop.
    ChildProcess chromium("lock-holder-c");
    ChildProcess firefox("lock-holder-f");
    fs::create_symlink(hostName() + "-" + std::to_string(chromium.pid()), home.chromiumUserData() / "SingletonLock");
    fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), home.firefoxProfile() / "lock");
    const auto before = home.snapshot();

    const CleanAnswers a = cleanEverything(home.platform());
    EXPECT_EQ(a.cacheEntries, 0u);
    EXPECT_FALSE(a.entryDeleted);
    EXPECT_EQ(a.historyEntries, 0u);
    EXPECT_FALSE(a.urlDeleted);
    EXPECT_FALSE(a.cleared);
    const std::vector<std::string> both = {home.chromiumProfile().string(), home.firefoxProfile().string()};
    EXPECT_EQ(a.cacheInUse, both);
    EXPECT_EQ(a.historyInUse, both);
    EXPECT_FALSE(home.platform().urlHistory().addUrl("http://added.test/", "Added", 0));
    EXPECT_EQ(home.snapshot(), before);

    // Once the browsers are gone their locks are stale, and the profiles are cleaned.
    chromium.stop();
    firefox.stop();
    const CleanAnswers after = cleanEverything(*home.freshPlatform());
    EXPECT_GT(after.cacheEntries, 0u);
    EXPECT_TRUE(after.cleared);
    EXPECT_TRUE(after.historyInUse.empty());
}

TEST(BrowserInUse, ALockOfAnotherMachineCountsAsHeld) {
    BrowserHome home(CacheLayout::InProfile, FirefoxRoot::DotMozilla, {.chromium = true, .firefox = false});
    fs::create_symlink("some-other-host-4242", home.chromiumUserData() / "SingletonLock");
    EXPECT_TRUE(listCache(home.platform().urlCache()).empty());
    EXPECT_EQ(home.platform().urlCache().storesInUse(), std::vector<std::string>{home.chromiumProfile().string()});
}

TEST(BrowserInUse, ALockedDatabaseLeavesTheWholeProfileAlone) {
    BrowserHome home;
    const auto before = home.snapshot();
    // Another program holds Chromium's Favicons database locked, as a running browser does.
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open((home.chromiumProfile() / "Favicons").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);

    platform::UrlHistory& history = home.platform().urlHistory();
    EXPECT_FALSE(history.clearHistory());
    EXPECT_EQ(history.storesInUse(), std::vector<std::string>{home.chromiumProfile().string()});
    for (const char* name : {"History", "Favicons", "Top Sites", "Shortcuts", "Visited Links"})
        EXPECT_EQ(readFile(home.chromiumProfile() / name), before.count(home.chromiumProfile() / name)
                                                               ? before.at(home.chromiumProfile() / name)
                                                               : std::string())
            << name;
    EXPECT_FALSE(fs::is_empty(home.chromiumProfile() / "Sessions"));

    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_TRUE(history.clearHistory());
}

TEST(BrowserInUse, ReadingADatabaseItsBrowserHoldsNamesTheProfileAndChangesNothing) {
    BrowserHome home;
    // Firefox keeps places.sqlite locked while it runs.
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open((home.firefoxProfile() / "places.sqlite").c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const auto before = home.snapshot();

    platform::UrlHistory& history = home.platform().urlHistory();
    EXPECT_EQ(listHistory(history).size(), visitedPages().size()); // Chromium's only
    EXPECT_EQ(history.storesInUse(), std::vector<std::string>{home.firefoxProfile().string()});
    EXPECT_EQ(changedFiles(before, home.snapshot()), std::vector<std::string>{});

    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
}
