// The Linux URL history over real Chromium and Firefox profiles: reading, filtering, adding,
// deleting one address and clearing, down to the bytes of every file the profiles hold.

#include "tests/platform/BrowserHome.h"

#include "browsers/ProfileHistory.h"
#include "browsers/Sqlite.h"
#include "platform/UrlHistory.h"
#include "platform/linux/ReadOnlySqliteFiles.h"
#include "tests/support/CachedAddresses.h"
#include "tests/support/Process.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sqlite3.h>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace testsupport;
using Json = nlohmann::ordered_json;

namespace {

std::vector<std::string> urlsOf(const std::vector<platform::StatUrl>& records) {
    std::vector<std::string> urls;
    for (const auto& r : records)
        urls.push_back(r.pwcsUrl);
    return urls;
}

/// Texts that only a visit leaves: addresses and titles of the pages that are not bookmarked, and
/// the address of the script they ran.
std::vector<std::string> visitTraces() {
    return {"scourmill-alpha-7f3a", "scourmill-beta-91c2", "scourmill-untitled-4d8e", "scourmill-gamma-2e6b",
            "scourmill-query-5521", "scourmill-delta-6a1f", "scourmill-epsilon-83d0", "Alpha Title 7f3a",
            "Beta Title 91c2", "Gamma Title 2e6b", "Delta Title 6a1f", "Epsilon Title 83d0", "scourmill-script-9a4e"};
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

/// A row for `url` in Firefox's places.
std::string placeRow(const std::string& url, const std::string& guid) {
    return "INSERT INTO moz_places (url, title, last_visit_date, guid) VALUES ('" + url + "', 'Logged', 1790000000000000, '" +
           guid + "');";
}

/// Adds `url` to places.sqlite the way a browser that stopped without closing its database leaves
/// it: the row only in the write-ahead log, and no -shm (exclusive locking keeps the log's index
/// in memory).
void leaveRowInLog(const fs::path& places, const std::string& url) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(places.c_str(), &db), SQLITE_OK);
    sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    const std::string sql = "PRAGMA locking_mode = EXCLUSIVE; " + placeRow(url, "scourmillog1");
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}

/// Writes `text` to `path`, making its folders.
void put(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

/// Adds the cache files no listing can name, each holding a visited address: entries whose key
/// cannot be read (a bad key, metadata never written), entries waiting for deletion, and the
/// caches kept beside the disk caches.
void addUnlistedCacheFiles(const BrowserHome& home) {
    const std::string trace = "body of scourmill-alpha-7f3a";
    const fs::path chromiumBase = home.chromiumCache().parent_path().parent_path();
    put(home.chromiumCache() / "00000000deadbeef_0", std::string("\x30\x5c\x72\xa8\x1b\xd1\x0e\xfc\x05\0\0\0\0\0\0\0", 16) + trace);
    put(home.chromiumCache() / "todelete_00000000deadbeef_0", trace);
    put(chromiumBase / "Code Cache/js/0123456789abcdef_0", trace);
    put(home.chromiumProfile() / "GPUCache/data_1", trace);
    put(home.chromiumProfile() / "Shared Dictionary/cache/0123456789abcdef_0", trace);
    // A page's entry the browser stopped writing before its metadata: only the data, whose size
    // the last four bytes give, and no key.
    for (const auto& entry : fs::directory_iterator(home.firefoxCache() / "entries"))
        if (const std::string b = readFile(entry.path()); b.find("page scourmill-alpha-7f3a") != std::string::npos)
            put(home.firefoxCache() / "entries/0123456789ABCDEF0123456789ABCDEF01234567",
                b.substr(0, std::uint8_t(b[b.size() - 4]) << 24 | std::uint8_t(b[b.size() - 3]) << 16 |
                                std::uint8_t(b[b.size() - 2]) << 8 | std::uint8_t(b[b.size() - 1])));
    put(home.firefoxCache() / "doomed/1", trace);
    put(home.firefoxCache() / "trash12345/entries/0123456789ABCDEF0123456789ABCDEF0123456A", trace);
    put(home.firefoxCache().parent_path() / "thumbnails/0a1b2c.png", trace);
}

/// Alters the profiles' databases to the schemas of older browsers: Firefox without foreign_count,
/// origins, page metadata and visit sources; Chromium without clusters, visited links and
/// annotations.
void makeSchemasOlder(const BrowserHome& home) {
    const auto sql = [](const fs::path& db, const std::string& statements) {
        const auto r = runCommand("sqlite3 " + shellQuoted(db) + " " + shellQuoted(statements));
        ASSERT_EQ(r.code, 0) << r.err;
    };
    sql(home.firefoxProfile() / "places.sqlite",
        "DROP INDEX moz_places_originidindex; ALTER TABLE moz_places DROP COLUMN origin_id; DROP TABLE moz_origins; "
        "ALTER TABLE moz_places DROP COLUMN foreign_count; DROP TABLE IF EXISTS moz_places_metadata_search_queries; "
        "DROP TABLE IF EXISTS moz_places_metadata; ALTER TABLE moz_historyvisits DROP COLUMN source;");
    std::string drops;
    for (const char* table : {"clusters", "clusters_and_visits", "cluster_keywords", "cluster_visit_duplicates",
                              "visited_links", "content_annotations", "context_annotations"})
        drops += std::string("DROP TABLE IF EXISTS ") + table + ";";
    sql(home.chromiumProfile() / "History", drops);
}

/// Each record of a visited site in Chromium's Preferences as "map: site"; with `strip`, `prefs`
/// loses those maps.
std::vector<std::string> visitRecords(Json& prefs, bool strip = false) {
    static const Json::json_pointer exceptions("/profile/content_settings/exceptions");
    std::vector<std::string> records;
    for (const char* map : {"site_engagement", "media_engagement", "important_site_info", "app_banner"}) {
        const Json sites = prefs[exceptions].value(map, Json::object());
        for (const auto& [key, value] : sites.items())
            records.push_back(std::string(map) + ": " + key);
        if (strip)
            prefs[exceptions].erase(map);
    }
    return records;
}

} // namespace

TEST(UrlHistory, ReadingChangesNoFileWhateverStateTheLogIsIn) {
    BrowserHome home;
    const fs::path places = home.firefoxProfile() / "places.sqlite";
    const fs::path wal = places.string() + "-wal", shm = places.string() + "-shm";
    auto readLeavesAll = [&](const char* state) {
        const auto before = home.snapshot();
        const auto urls = urlsOf(listHistory(home.freshPlatform()->urlHistory()));
        EXPECT_EQ(changedFiles(before, home.snapshot()), std::vector<std::string>{}) << state;
        EXPECT_FALSE(fs::exists(shm)) << state;
        return urls;
    };

    // Without the log the browser leaves on closing, none is made; Chromium's rollback-journal
    // databases are read beside it.
    fs::remove(wal);
    EXPECT_EQ(readLeavesAll("no log").size(), 2 * visitedPages().size());
    EXPECT_FALSE(fs::exists(wal));

    // A FIFO planted as the log is never opened to wait on: reading ends (an alarm ends the
    // program should it not) and leaves the FIFO where it was.
    ASSERT_EQ(::mkfifo(wal.c_str(), 0600), 0);
    ::alarm(60);
    listHistory(home.freshPlatform()->urlHistory());
    ::alarm(0);
    EXPECT_TRUE(fs::is_fifo(fs::symlink_status(wal)));
    fs::remove(wal);

    // Rows that reached only the log are read from it, without the -shm SQLite would make.
    const std::string logged = kSite + "scourmill-logged-0e71.html";
    leaveRowInLog(places, logged);
    ASSERT_GT(fs::file_size(wal), 0u);
    ASSERT_FALSE(fs::exists(shm));
    EXPECT_EQ(std::ranges::count(readLeavesAll("rows in the log"), logged), 1);

    // Another process has the database open and its -shm in use: read through it, unchanged.
    FILE* writer = ::popen(("sqlite3 " + shellQuoted(places) + " >/dev/null").c_str(), "w");
    ASSERT_TRUE(writer);
    const std::string live = kSite + "scourmill-live-93c4.html";
    std::fputs((placeRow(live, "scourmillive") + "\n").c_str(), writer);
    std::fflush(writer);
    for (int i = 0; i < 200 && !(fs::exists(shm) && holdsText(readFile(wal), live)); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_TRUE(fs::exists(shm));
    const auto before = home.snapshot();
    const auto urls = urlsOf(listHistory(home.freshPlatform()->urlHistory()));
    EXPECT_EQ(changedFiles(before, home.snapshot()), std::vector<std::string>{});
    EXPECT_EQ(std::ranges::count(urls, logged) + std::ranges::count(urls, live), 2);
    EXPECT_EQ(::pclose(writer), 0);
    EXPECT_EQ(integrityOf(places), "ok\n");
}

TEST(UrlHistory, ReadsADatabaseWhoseFolderNameLooksLikeUriSyntax) {
    ScratchDir dir;
    const fs::path folder = dir.path() / "a?mode=rwc#b%41 c";
    fs::create_directories(folder);
    const fs::path path = folder / "places.sqlite";
    ASSERT_EQ(runCommand("sqlite3 " + shellQuoted(path) + " 'CREATE TABLE t(x); INSERT INTO t VALUES (7)'").code, 0);
    const auto db = browsers::SqliteDb::openReadOnly(path.string(), 0, platform::linux::readOnlySqliteFiles());
    ASSERT_TRUE(db);
    EXPECT_EQ(db->value("SELECT x FROM t"), "7");
    EXPECT_FALSE(browsers::SqliteDb::openReadOnly((folder / "missing.sqlite").string(), 0,
                                                   platform::linux::readOnlySqliteFiles()));
    EXPECT_FALSE(fs::exists(folder / "missing.sqlite"));
}

TEST(UrlHistory, ReadsBothProfilesWithTitlesTimesAndFiltersAndAddsToChromiumOnly) {
    BrowserHome home(CacheLayout::UnderCacheHome, FirefoxRoot::XdgConfig);
    platform::UrlHistory& history = home.platform().urlHistory();
    const auto all = listHistory(history);
    ASSERT_EQ(all.size(), 2 * visitedPages().size());
    // Chromium's profile first, in the order the pages were visited; then Firefox's.
    for (std::size_t i = 0; i < visitedPages().size(); ++i) {
        EXPECT_EQ(all[i].pwcsUrl, visitedPages()[i].url);
        EXPECT_EQ(all[i].pwcsTitle, visitedPages()[i].title);
    }
    const auto urls = urlsOf(all);
    const auto firefoxFirst = urls.begin() + static_cast<long>(visitedPages().size());
    EXPECT_EQ(std::set(urls.begin(), firefoxFirst), std::set(firefoxFirst, urls.end()));
    // Visited in late 2026, by either clock: between 2026-01-01 and 2028-01-01 as FILETIMEs.
    for (const auto& record : all) {
        const std::uint64_t visited = std::uint64_t(record.ftLastVisited.dwHighDateTime) << 32 |
                                      record.ftLastVisited.dwLowDateTime;
        EXPECT_TRUE(visited > 134116128000000000ULL && visited < 134747424000000000ULL) << record.pwcsUrl;
        EXPECT_TRUE(record.dwFlags & browsers::kStatUrlTopLevel);
    }
    const auto filtered = urlsOf(listHistory(history, kSite + "scourmill-b"));
    EXPECT_EQ(std::set<std::string>(filtered.begin(), filtered.end()),
              (std::set<std::string>{kBookmarkedUrl, kSite + "scourmill-beta-91c2.html"}));
    EXPECT_EQ(filtered.size(), 4u);

    // Added to Chromium's history only, once however often it is added.
    const std::string firefox = readFile(home.firefoxProfile() / "places.sqlite");
    ASSERT_TRUE(history.addUrl("http://added.test/page", "Added Page", 0));
    const auto added = listHistory(history, "http://added.test/");
    ASSERT_EQ(added.size(), 1u);
    EXPECT_EQ(added[0].pwcsTitle, "Added Page");
    ASSERT_TRUE(history.addUrl("http://added.test/page", "", 0));
    EXPECT_EQ(listHistory(history, "http://added.test/").size(), 1u);
    EXPECT_EQ(integrityOf(home.chromiumProfile() / "History"), "ok\n");
    EXPECT_EQ(readFile(home.firefoxProfile() / "places.sqlite"), firefox);
    // Firefox's history takes no additions: with only Firefox, adding fails and changes nothing.
    fs::remove_all(home.chromiumUserData());
    const auto before = home.snapshot();
    EXPECT_FALSE(home.freshPlatform()->urlHistory().addUrl("http://added.test/page", "Added Page", 0));
    EXPECT_EQ(home.snapshot(), before);
}

TEST(UrlHistory, ClearingHistoryAndCacheLeavesNoVisitedAddressInAnyFile) {
    BrowserHome home;
    const std::string bookmarks = readFile(home.chromiumProfile() / "Bookmarks");
    addUnlistedCacheFiles(home);
    const fs::path unreadable = home.chromiumCache() / "0000000000c0ffee_0";
    put(unreadable, "body of scourmill-gamma-2e6b");
    fs::permissions(unreadable, fs::perms::none);
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(prefs, mode);
    Json prefsBefore = Json::parse(readFile(prefs));
    ASSERT_GE(visitRecords(prefsBefore, true).size(), 4u);

    platform::Platform& platform = home.platform();
    ASSERT_TRUE(platform.urlHistory().clearHistory(home.remover()));
    // An address both browsers cached is deleted from both at once.
    const auto cached = testsupport::cachedAddresses(platform.urlCache());
    for (const std::string& url : std::set<std::string>(cached.begin(), cached.end()))
        EXPECT_TRUE(platform.urlCache().deleteEntry(url, home.remover())) << url;
    EXPECT_GE(platform.urlCache().deleteUnlisted(home.remover()), 10u);

    EXPECT_EQ(filesHolding(home, visitTraces()), std::vector<std::string>{});
    EXPECT_FALSE(fs::exists(unreadable));
    EXPECT_TRUE(listHistory(platform.urlHistory()).empty());
    EXPECT_TRUE(testsupport::cachedAddresses(platform.urlCache()).empty());
    EXPECT_TRUE(platform.urlHistory().storeProblems().empty());
    // The caches stay caches: the simple cache's marker and the folders the browser writes into.
    EXPECT_TRUE(fs::exists(home.chromiumCache() / "index"));
    EXPECT_TRUE(fs::is_directory(home.firefoxCache() / "entries"));

    // Preferences loses its visited sites and nothing else, rewritten in place with its permissions.
    Json prefsAfter = Json::parse(readFile(prefs));
    EXPECT_EQ(visitRecords(prefsAfter, true), std::vector<std::string>{});
    EXPECT_EQ(prefsAfter, prefsBefore);
    EXPECT_EQ(fs::status(prefs).permissions(), mode);
    for (const auto& entry : fs::directory_iterator(home.chromiumProfile()))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".Preferences")) << "left from the rewrite";

    // The bookmark stays, in both browsers, and every database is sound.
    EXPECT_EQ(readFile(home.chromiumProfile() / "Bookmarks"), bookmarks);
    const auto places = testsupport::runCommand(
        "sqlite3 " + shellQuoted(home.firefoxProfile() / "places.sqlite") +
        " \"SELECT b.title, p.url, p.visit_count FROM moz_bookmarks b JOIN moz_places p ON p.id = b.fk\"");
    EXPECT_EQ(places.out, "Scourmill Bookmarked Title b00c|" + kBookmarkedUrl + "|0\n");
    for (const fs::path& db : databases(home))
        EXPECT_EQ(integrityOf(db), "ok\n") << db;
}

TEST(UrlHistory, DeletingOneAddressForgetsItInEveryDatabaseAndSessionFileOfOlderSchemasToo) {
    BrowserHome home;
    makeSchemasOlder(home);
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    const std::string original = readFile(prefs);
    platform::UrlHistory& history = home.platform().urlHistory();
    const std::string gamma = visitedPages()[3].url;
    ASSERT_TRUE(history.deleteUrl(gamma, 0, home.remover()));
    EXPECT_TRUE(history.storeProblems().empty());

    const auto urls = urlsOf(listHistory(history));
    EXPECT_EQ(urls.size(), 2 * visitedPages().size() - 2);
    EXPECT_EQ(std::count(urls.begin(), urls.end(), gamma), 0);
    // Not in any byte of the profiles: the session files that named it went with it.
    auto left = filesHolding(home, {"scourmill-gamma-2e6b", "Gamma Title 2e6b"});
    std::erase_if(left, [](const std::string& file) { return file.find("/.cache/") != std::string::npos; });
    EXPECT_EQ(left, std::vector<std::string>{});
    // Other pages of its site stay visited: the site keeps its records, Preferences is not rewritten.
    EXPECT_EQ(readFile(prefs), original);

    // The only page of its site (delta): that site's records go, every other site's stay.
    ASSERT_TRUE(history.deleteUrl(visitedPages()[4].url, 0, home.remover()));
    Json parsed = Json::parse(original), now = Json::parse(readFile(prefs));
    std::vector<std::string> expected = visitRecords(parsed);
    ASSERT_GT(std::erase_if(expected, [](const std::string& r) { return r.ends_with(":48124,*"); }), 0u);
    EXPECT_EQ(visitRecords(now), expected);

    // The bookmarked address loses its visits but keeps its place.
    ASSERT_TRUE(history.deleteUrl(kBookmarkedUrl, 0, home.remover()));
    EXPECT_EQ(urlsOf(listHistory(history, kBookmarkedUrl)), std::vector<std::string>{});
    EXPECT_FALSE(filesHolding(home, {kBookmarkedUrl}, {"places.sqlite"}).empty());
    for (const fs::path& db : databases(home))
        EXPECT_EQ(integrityOf(db), "ok\n") << db;
}
