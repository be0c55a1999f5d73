// The Linux URL history over real Chromium and Firefox profiles: reading, filtering, adding,
// deleting one address and clearing, down to the bytes of every file the profiles hold.

#include "tests/platform/BrowserHome.h"

#include "platform/linux/LinuxUrlHistory.h"
#include "platform/linux/ProfileHistory.h"
#include "tests/support/CliProcess.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;
using namespace testsupport;

namespace {

std::uint64_t asNumber(const platform::FileTime& t) {
    return std::uint64_t(t.dwHighDateTime) << 32 | t.dwLowDateTime;
}

std::vector<std::string> urlsOf(const std::vector<platform::StatUrl>& records) {
    std::vector<std::string> urls;
    for (const auto& r : records)
        urls.push_back(r.pwcsUrl);
    return urls;
}

/// Texts that only a visit leaves: addresses and titles of the pages that are not bookmarked.
std::vector<std::string> visitTraces() {
    return {"scourmill-alpha-7f3a", "scourmill-beta-91c2", "scourmill-untitled-4d8e", "scourmill-gamma-2e6b",
            "scourmill-query-5521", "Alpha Title 7f3a", "Beta Title 91c2", "Gamma Title 2e6b"};
}

/// Every file of the home that still holds one of `texts`, with the text.
std::vector<std::string> filesHolding(const BrowserHome& home, const std::vector<std::string>& texts,
                                      const std::vector<std::string>& onlyFiles = {}) {
    std::vector<std::string> found;
    for (const auto& [path, bytes] : home.snapshot()) {
        if (!onlyFiles.empty() && std::find(onlyFiles.begin(), onlyFiles.end(), path.filename()) == onlyFiles.end())
            continue;
        for (const std::string& text : texts)
            if (holdsText(bytes, text))
                found.push_back(path.string() + ": " + text);
    }
    return found;
}

std::vector<fs::path> databases(const BrowserHome& home) {
    return {home.chromiumProfile() / "History", home.chromiumProfile() / "Favicons", home.chromiumProfile() / "Top Sites",
            home.chromiumProfile() / "Shortcuts", home.chromiumProfile() / "Network Action Predictor",
            home.chromiumUserData() / "segmentation_platform/ukm_db", home.firefoxProfile() / "places.sqlite",
            home.firefoxProfile() / "favicons.sqlite"};
}

} // namespace

TEST(UrlHistory, ReadsBothProfilesWithTitlesTimesAndFilters) {
    BrowserHome home(CacheLayout::UnderCacheHome, FirefoxRoot::XdgConfig);
    platform::UrlHistory& history = home.platform().urlHistory();

    const auto all = listHistory(history);
    ASSERT_EQ(all.size(), 2 * visitedPages().size());
    // Chromium's profile first, in the order the pages were visited; then Firefox's.
    for (std::size_t i = 0; i < visitedPages().size(); ++i) {
        EXPECT_EQ(all[i].pwcsUrl, visitedPages()[i].url);
        EXPECT_EQ(all[i].pwcsTitle, visitedPages()[i].title);
    }
    std::vector<std::string> firefox = urlsOf({all.begin() + visitedPages().size(), all.end()});
    std::vector<std::string> expected;
    for (const auto& page : visitedPages())
        expected.push_back(page.url);
    std::sort(firefox.begin(), firefox.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(firefox, expected);

    // Visited in late 2026, by either clock: 2026-01-01 and 2028-01-01 as FILETIMEs.
    for (const auto& record : all) {
        EXPECT_GT(asNumber(record.ftLastVisited), 134116128000000000ULL) << record.pwcsUrl;
        EXPECT_LT(asNumber(record.ftLastVisited), 134747424000000000ULL) << record.pwcsUrl;
        EXPECT_TRUE(record.dwFlags & platform::linux::kStatUrlTopLevel);
    }
    EXPECT_EQ(asNumber(all[0].ftExpires) - asNumber(all[0].ftLastVisited), 90ULL * 24 * 3600 * 10000000);

    const auto filtered = listHistory(history, kSite + "scourmill-b");
    EXPECT_EQ(filtered.size(), 4u);
    for (const auto& record : filtered)
        EXPECT_TRUE(record.pwcsUrl == kBookmarkedUrl || record.pwcsUrl == kSite + "scourmill-beta-91c2.html");
    const auto bare = listHistory(history, "", platform::linux::StatUrlQuery::NoTitle | platform::linux::StatUrlQuery::TopLevel);
    EXPECT_EQ(bare.size(), all.size());
    EXPECT_TRUE(std::all_of(bare.begin(), bare.end(), [](const auto& r) { return r.pwcsTitle.empty(); }));
    EXPECT_TRUE(listHistory(history, "https://").empty());
}

TEST(UrlHistory, ClearingHistoryAndCacheLeavesNoVisitedAddressInAnyFile) {
    BrowserHome home;
    const std::string bookmarks = readFile(home.chromiumProfile() / "Bookmarks");
    ASSERT_FALSE(filesHolding(home, visitTraces()).empty());
    ASSERT_TRUE(fs::exists(home.firefoxProfile() / "sessionstore.jsonlz4"));

    platform::Platform& platform = home.platform();
    ASSERT_TRUE(platform.urlHistory().clearHistory());
    for (const std::string& url : listCache(platform.urlCache()))
        platform.urlCache().deleteEntry(url);

    EXPECT_EQ(filesHolding(home, visitTraces()), std::vector<std::string>{});
    EXPECT_TRUE(listHistory(platform.urlHistory()).empty());
    EXPECT_TRUE(platform.urlHistory().storesInUse().empty());
    for (const auto& [path, bytes] : home.snapshot()) {
        const std::string name = path.filename().string();
        if (name.ends_with("-wal") || name.ends_with("-journal")) {
            EXPECT_EQ(bytes.size(), 0u) << path;
        }
    }

    // The bookmark stays, in both browsers, and every database is sound.
    EXPECT_EQ(readFile(home.chromiumProfile() / "Bookmarks"), bookmarks);
    const auto places = testsupport::runCommand(
        "sqlite3 " + shellQuoted(home.firefoxProfile() / "places.sqlite") +
        " \"SELECT b.title, p.url, p.visit_count FROM moz_bookmarks b JOIN moz_places p ON p.id = b.fk\"");
    EXPECT_EQ(places.out, "Scourmill Bookmarked Title b00c|" + kBookmarkedUrl + "|0\n");
    for (const fs::path& db : databases(home))
        EXPECT_EQ(integrityOf(db), "ok\n") << db;
}

TEST(UrlHistory, DeletingOneAddressForgetsItInEveryDatabase) {
    BrowserHome home;
    platform::UrlHistory& history = home.platform().urlHistory();
    const std::string gamma = visitedPages()[3].url;
    ASSERT_TRUE(history.deleteUrl(gamma, 0));

    const auto urls = urlsOf(listHistory(history));
    EXPECT_EQ(urls.size(), 2 * visitedPages().size() - 2);
    EXPECT_EQ(std::count(urls.begin(), urls.end(), gamma), 0);
    const std::vector<std::string> dbFiles = {"History", "Favicons", "Top Sites", "Shortcuts", "Network Action Predictor",
                                              "ukm_db", "places.sqlite", "favicons.sqlite"};
    EXPECT_EQ(filesHolding(home, {"scourmill-gamma-2e6b", "Gamma Title 2e6b"}, dbFiles), std::vector<std::string>{});
    EXPECT_FALSE(filesHolding(home, {"scourmill-beta-91c2"}, {"History"}).empty()) << "other addresses stay";

    // The bookmarked address loses its visits but keeps its place.
    ASSERT_TRUE(history.deleteUrl(kBookmarkedUrl, 0));
    EXPECT_EQ(urlsOf(listHistory(history, kBookmarkedUrl)), std::vector<std::string>{});
    EXPECT_FALSE(filesHolding(home, {kBookmarkedUrl}, {"places.sqlite"}).empty());
    for (const fs::path& db : databases(home))
        EXPECT_EQ(integrityOf(db), "ok\n") << db;
}

TEST(UrlHistory, AddsToChromiumAndNotToFirefox) {
    {
        BrowserHome home;
        platform::UrlHistory& history = home.platform().urlHistory();
        ASSERT_TRUE(history.addUrl("http://added.test/page", "Added Page", 0));
        const auto added = listHistory(history, "http://added.test/");
        ASSERT_EQ(added.size(), 1u);
        EXPECT_EQ(added[0].pwcsTitle, "Added Page");
        // Added again: still one entry, visited twice.
        ASSERT_TRUE(history.addUrl("http://added.test/page", "", 0));
        EXPECT_EQ(listHistory(history, "http://added.test/").size(), 1u);
        EXPECT_EQ(integrityOf(home.chromiumProfile() / "History"), "ok\n");
        ASSERT_TRUE(history.deleteUrl("http://added.test/page", 0));
        EXPECT_TRUE(listHistory(history, "http://added.test/").empty());
    }
    BrowserHome firefoxOnly(CacheLayout::UnderCacheHome, FirefoxRoot::DotMozilla, {.chromium = false, .firefox = true});
    const auto before = firefoxOnly.snapshot();
    EXPECT_FALSE(firefoxOnly.platform().urlHistory().addUrl("http://added.test/page", "Added Page", 0));
    EXPECT_EQ(firefoxOnly.snapshot(), before);
}
