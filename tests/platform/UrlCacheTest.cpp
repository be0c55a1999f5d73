// The Linux URL cache over the disk caches of real Chromium and Firefox profiles.

#include "tests/platform/BrowserHome.h"
#include "tests/support/CachedAddresses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

namespace fs = std::filesystem;
using namespace testsupport;

namespace {

std::set<std::string> cachedInBoth() {
    std::set<std::string> urls;
    for (const VisitedPage& page : visitedPages())
        urls.insert(page.url);
    for (const char* file : {"scourmill-style-3b7d.css", "scourmill-picture-c0de.png", "scourmill-icon-e5f1.png",
                             "scourmill-script-9a4e.js"})
        urls.insert(kSite + file);
    return urls;
}

std::string firstEntryFile(const fs::path& folder, const std::string& containing) {
    for (const auto& e : fs::recursive_directory_iterator(folder))
        if (e.is_regular_file() && readFile(e.path()).find(containing) != std::string::npos &&
            e.path().filename().string().size() >= 18 && e.path().parent_path().filename() != "index-dir")
            return e.path().filename().string();
    return {};
}

void writeBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace

class UrlCacheLayouts : public ::testing::TestWithParam<std::pair<CacheLayout, FirefoxRoot>> {};

TEST_P(UrlCacheLayouts, ListsEveryEntryProfileByProfile) {
    BrowserHome home(GetParam().first, GetParam().second);
    // What a browser killed while creating entries leaves, skipped: fewer bytes than any header.
    writeBytes(home.firefoxCache() / "entries/0123456789ABCDEF0123456789ABCDEF01234567", std::string("\0\0\1", 3));
    writeBytes(home.chromiumCache() / "0123456789abcdef_0", "");
    const std::vector<std::string> urls = testsupport::cachedAddresses(home.platform().urlCache());
    const std::set<std::string> expected = cachedInBoth();
    ASSERT_EQ(urls.size(), expected.size() * 2 + 1); // Firefox also cached its start page
    const std::set<std::string> chromium(urls.begin(), urls.begin() + expected.size());
    std::set<std::string> firefox(urls.begin() + expected.size(), urls.end());
    EXPECT_EQ(chromium, expected);
    EXPECT_EQ(firefox.erase("about:home"), 1u);
    EXPECT_EQ(firefox, expected);
    EXPECT_TRUE(home.platform().urlCache().storesInUse().empty());
}

INSTANTIATE_TEST_SUITE_P(BothLayouts, UrlCacheLayouts,
                         ::testing::Values(std::pair{CacheLayout::UnderCacheHome, FirefoxRoot::DotMozilla},
                                           std::pair{CacheLayout::InProfile, FirefoxRoot::XdgConfig}));

TEST(UrlCache, DeletingAnEntryRemovesAllItsFilesAndInvalidatesTheIndexWithOrWithoutAListing) {
    BrowserHome home;
    const std::string beta = kSite + "scourmill-beta-91c2.html";
    const std::string chromiumEntry = firstEntryFile(home.chromiumCache(), "http://127.0.0.1 " + beta);
    ASSERT_FALSE(chromiumEntry.empty());
    const std::string stem = chromiumEntry.substr(0, 16);
    writeBytes(home.chromiumCache() / (stem + "_1"), "stream two");
    writeBytes(home.chromiumCache() / (stem + "_s"), "sparse data");
    writeBytes(home.firefoxCache() / "index", "cache2 index");
    const std::string firefoxEntry = firstEntryFile(home.firefoxCache() / "entries", ":" + beta + std::string(1, '\0'));
    ASSERT_FALSE(firefoxEntry.empty());
    auto before = home.snapshot();

    platform::UrlCache& cache = home.platform().urlCache();
    testsupport::cachedAddresses(cache);
    ASSERT_TRUE(cache.deleteEntry(beta, home.remover()));

    for (const fs::path& gone : {home.chromiumCache() / chromiumEntry, home.chromiumCache() / (stem + "_1"),
                                 home.chromiumCache() / (stem + "_s"), home.chromiumCache() / "index-dir/the-real-index",
                                 home.firefoxCache() / "entries" / firefoxEntry, home.firefoxCache() / "index"}) {
        EXPECT_FALSE(fs::exists(gone)) << gone;
        before.erase(gone);
    }
    EXPECT_EQ(home.snapshot(), before) << "only the entry's files and the indexes go";

    std::vector<std::string> left = testsupport::cachedAddresses(cache);
    EXPECT_EQ(std::count(left.begin(), left.end(), beta), 0);
    EXPECT_EQ(left.size(), cachedInBoth().size() * 2 + 1 - 2);
    EXPECT_FALSE(cache.deleteEntry(beta, home.remover()));

    // Another run deletes without listing first.
    EXPECT_TRUE(home.freshPlatform()->urlCache().deleteEntry(kSite + "scourmill-alpha-7f3a.html", home.remover()));

    // Entries written after a listing are found: one with a long key in a large Firefox entry (the
    // key lies past the first read), one new simple-cache entry.
    const std::string longUrl = kSite + "long-" + std::string(700, 'k');
    const fs::path longEntry = home.firefoxCache() / "entries" / "0123456789ABCDEF0123456789ABCDEF01234567";
    const std::string longBytes = std::string(300 * 1024, 'd') + cache2Metadata(300 * 1024, "a,:" + longUrl);
    writeBytes(longEntry, longBytes);
    writeBytes(home.chromiumCache() / "0123456789abcdef_0", simpleCacheHead("1/0/_dk_http://x http://x " + kSite + "late.png"));
    EXPECT_TRUE(cache.deleteEntry(longUrl, home.remover()));
    EXPECT_TRUE(cache.deleteEntry(kSite + "late.png", home.remover()));
    EXPECT_FALSE(fs::exists(home.chromiumCache() / "0123456789abcdef_0"));

    writeBytes(longEntry, longBytes);
    const std::vector<std::string> urls = testsupport::cachedAddresses(home.freshPlatform()->urlCache());
    EXPECT_EQ(std::count(urls.begin(), urls.end(), longUrl), 1);
}
