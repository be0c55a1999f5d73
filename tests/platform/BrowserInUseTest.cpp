// Profiles that a browser holds are left whole by the cache and the history, and named.

#include "tests/platform/BrowserHome.h"
#include "tests/support/CachedAddresses.h"
#include "tests/support/Process.h"

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

} // namespace

TEST(BrowserInUse, LockedDatabasesAndLiveLocksKeepBothProfilesByteForByte) {
    BrowserHome home;
    auto before = home.snapshot();
    // Other programs hold Chromium's Favicons and Firefox's places.sqlite locked, as running
    // browsers do: the whole profile is left alone, and named once the lock is met.
    std::vector<sqlite3*> holders;
    for (const fs::path& db : {home.chromiumProfile() / "Favicons", home.firefoxProfile() / "places.sqlite"}) {
        ASSERT_EQ(sqlite3_open(db.c_str(), &holders.emplace_back()), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(holders.back(), "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE", nullptr, nullptr,
                               nullptr),
                  SQLITE_OK);
    }
    platform::UrlHistory& history = home.platform().urlHistory();
    EXPECT_EQ(listHistory(history).size(), visitedPages().size()); // Chromium's only
    EXPECT_EQ(history.storesInUse(), std::vector<std::string>{home.firefoxProfile().string()});
    EXPECT_FALSE(history.clearHistory(home.remover()));
    const std::vector<std::string> both = {home.chromiumProfile().string(), home.firefoxProfile().string()};
    EXPECT_EQ(history.storesInUse(), both);
    EXPECT_EQ(changedFiles(before, home.snapshot()), std::vector<std::string>{});
    for (sqlite3* db : holders) {
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }

    // Any live process makes a lock current; these names are ones no browser watcher looks for,
    // so tests running beside this one see no browser start or stop.
    ChildProcess chromium("lock-holder-c");
    ChildProcess firefox("lock-holder-f");
    fs::create_symlink(hostName() + "-" + std::to_string(chromium.pid()), home.chromiumUserData() / "SingletonLock");
    fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), home.firefoxProfile() / "lock");
    before = home.snapshot();
    const auto locked = home.freshPlatform();
    EXPECT_TRUE(testsupport::cachedAddresses(locked->urlCache()).empty());
    EXPECT_FALSE(locked->urlCache().deleteEntry(visitedPages()[0].url, home.remover()));
    EXPECT_TRUE(listHistory(locked->urlHistory()).empty());
    EXPECT_FALSE(locked->urlHistory().deleteUrl(visitedPages()[1].url, 0, home.remover()));
    EXPECT_FALSE(locked->urlHistory().clearHistory(home.remover()));
    EXPECT_FALSE(locked->urlHistory().addUrl("http://added.test/", "Added", 0));
    EXPECT_EQ(locked->urlCache().storesInUse(), both);
    EXPECT_EQ(locked->urlHistory().storesInUse(), both);
    EXPECT_EQ(home.snapshot(), before);

    // Once the browsers are gone their locks are stale, and the profiles are cleaned.
    chromium.stop();
    firefox.stop();
    const auto again = home.freshPlatform();
    EXPECT_FALSE(testsupport::cachedAddresses(again->urlCache()).empty());
    EXPECT_TRUE(again->urlHistory().clearHistory(home.remover()));
    EXPECT_TRUE(again->urlHistory().storesInUse().empty());

    // A lock of another machine counts as held: its browser may have the profile open.
    fs::remove(home.chromiumUserData() / "SingletonLock");
    fs::create_symlink("some-other-host-4242", home.chromiumUserData() / "SingletonLock");
    const auto shared = home.freshPlatform();
    testsupport::cachedAddresses(shared->urlCache());
    EXPECT_EQ(shared->urlCache().storesInUse(), std::vector<std::string>{home.chromiumProfile().string()});
}
