// The visited sites a real Chromium profile keeps in its Preferences file: gone with the history,
// one site with its last visited page; a Preferences that is no plain JSON file is left as it is.

#include "tests/platform/BrowserHome.h"

#include "browsers/ChromiumPreferences.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace testsupport;
using Json = nlohmann::ordered_json;

namespace {

const Json::json_pointer kExceptions("/profile/content_settings/exceptions");
const char* const kVisitMaps[] = {"site_engagement", "media_engagement", "important_site_info", "app_banner"};

/// Each visit record of `prefs` as "map: key"; with `strip`, `prefs` loses its visit maps.
std::vector<std::string> visitRecords(Json& prefs, bool strip = false) {
    std::vector<std::string> records;
    for (const char* map : kVisitMaps) {
        const Json sites = prefs[kExceptions].value(map, Json::object());
        for (const auto& [key, value] : sites.items())
            records.push_back(std::string(map) + ": " + key);
        if (strip)
            prefs[kExceptions].erase(map);
    }
    return records;
}

} // namespace

TEST(ChromiumPreferences, OriginsOfAddressesAndSitePatterns) {
    using browsers::siteOrigin;
    EXPECT_EQ(siteOrigin("HTTP://User:pw@Example.COM:80/a?b#c"), "http://example.com");
    EXPECT_EQ(siteOrigin("https://example.com:443"), siteOrigin("https://example.com/x"));
    EXPECT_EQ(siteOrigin("http://[::1]:8080/"), "http://[::1]:8080");
    for (const char* pattern : {"[*.]example.com", "http://example.com:*", "*://example.com"})
        EXPECT_EQ(siteOrigin(pattern), std::nullopt) << pattern;
}

TEST(ChromiumPreferences, ClearingHistoryForgetsEveryVisitedSiteAndKeepsTheRestAndThePermissions) {
    BrowserHome home;
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    const auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(prefs, mode);
    Json before = Json::parse(readFile(prefs));
    ASSERT_GE(visitRecords(before, true).size(), 4u);

    ASSERT_TRUE(home.platform().urlHistory().clearHistory(home.remover()));
    EXPECT_TRUE(home.platform().urlHistory().storeProblems().empty());
    const std::string bytes = readFile(prefs);
    Json after = Json::parse(bytes);
    EXPECT_EQ(visitRecords(after, true), std::vector<std::string>{});
    EXPECT_EQ(after, before);
    EXPECT_EQ(fs::status(prefs).permissions(), mode);
    for (const auto& entry : fs::directory_iterator(home.chromiumProfile()))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".Preferences")) << "left from the rewrite";
}

TEST(ChromiumPreferences, OneSiteGoesWithItsLastVisitedPage) {
    BrowserHome home;
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    const std::string original = readFile(prefs);
    Json parsed = Json::parse(original);
    platform::UrlHistory& history = home.platform().urlHistory();

    // Other pages of the site stay visited: its records stay, and the file is not rewritten.
    ASSERT_TRUE(history.deleteUrl(visitedPages()[3].url, 0, home.remover()));
    EXPECT_EQ(readFile(prefs), original);

    // The only page of its site (delta): that site's records go, every other site's stay.
    ASSERT_TRUE(history.deleteUrl(visitedPages()[4].url, 0, home.remover()));
    EXPECT_TRUE(history.storeProblems().empty());
    std::vector<std::string> expected = visitRecords(parsed);
    const auto gone = std::erase_if(expected, [](const std::string& r) { return r.ends_with(":48124,*"); });
    ASSERT_GT(gone, 0u);
    Json now = Json::parse(readFile(prefs));
    EXPECT_EQ(visitRecords(now), expected);
}

TEST(ChromiumPreferences, APreferencesThatIsNoPlainJsonFileIsNamedAndLeftAsItIs) {
    const std::vector<std::tuple<const char*, std::function<void(const fs::path&)>>> cases = {
        {"is not valid JSON", [](const fs::path& p) { fs::resize_file(p, fs::file_size(p) / 2); }},
        {"symbolic link", [](const fs::path& p) {
             fs::rename(p, p.string() + ".real");
             fs::create_symlink("Preferences.real", p);
         }},
        {"FIFO", [](const fs::path& p) { fs::remove(p), ::mkfifo(p.c_str(), 0600); }},
        // The superuser reads any file, whatever its permissions.
        {::geteuid() == 0 ? "" : "cannot be read", [](const fs::path& p) { fs::permissions(p, fs::perms::none); }},
    };
    for (const auto& [reason, plant] : cases) {
        if (!*reason)
            continue;
        BrowserHome home;
        const fs::path prefs = home.chromiumProfile() / "Preferences";
        plant(prefs);
        const fs::file_type kind = fs::symlink_status(prefs).type();
        const auto before = home.snapshot();
        platform::UrlHistory& history = home.platform().urlHistory();
        EXPECT_FALSE(history.clearHistory(home.remover())) << reason;
        const auto problems = history.storeProblems();
        const std::string why = reason; // a structured binding cannot be captured everywhere
        EXPECT_TRUE(std::any_of(problems.begin(), problems.end(), [&](const auto& p) {
            return p.file == prefs.string() && p.reason.find(why) != std::string::npos;
        })) << reason;
        // The rest of the history went all the same; the planted file is exactly what it was.
        EXPECT_EQ(listHistory(history).size(), 0u) << reason;
        EXPECT_EQ(fs::symlink_status(prefs).type(), kind) << reason;
        const auto after = home.snapshot();
        for (const auto& [path, bytes] : before)
            if (path.filename().string().starts_with("Preferences")) {
                EXPECT_EQ(after.at(path), bytes) << reason << " " << path;
            }
    }
}
