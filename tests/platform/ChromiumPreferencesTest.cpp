// The visited sites a real Chromium profile keeps in its Preferences file: gone with the history,
// one site with its last visited page, and a Preferences that is not the browser's plain JSON file
// is named and left as it is.

#include "tests/platform/BrowserHome.h"

#include "platform/linux/ChromiumPreferences.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace testsupport;
using Json = nlohmann::ordered_json;

namespace {

const char* const kVisitMaps[] = {"site_engagement", "media_engagement", "important_site_info", "app_banner"};

Json::json_pointer exceptions() {
    return Json::json_pointer("/profile/content_settings/exceptions");
}

/// The sites each visit map of `prefs` names, as "map: key".
std::vector<std::string> visitRecords(const Json& prefs) {
    std::vector<std::string> records;
    for (const char* map : kVisitMaps)
        if (prefs[exceptions()].contains(map))
            for (const auto& [key, value] : prefs[exceptions()][map].items())
                records.push_back(std::string(map) + ": " + key);
    return records;
}

/// `prefs` without its visit maps: what must survive every clean.
Json withoutVisitMaps(Json prefs) {
    for (const char* map : kVisitMaps)
        prefs[exceptions()].erase(map);
    return prefs;
}

bool namesProblem(platform::UrlHistory& history, const fs::path& file, const std::string& reason) {
    for (const auto& problem : history.storeProblems())
        if (problem.file == file.string() && problem.reason.find(reason) != std::string::npos)
            return true;
    return false;
}

} // namespace

TEST(ChromiumPreferences, OriginsOfAddressesAndSitePatterns) {
    using platform::linux::siteOrigin;
    EXPECT_EQ(siteOrigin("HTTP://User:pw@Example.COM:80/a?b#c"), "http://example.com");
    EXPECT_EQ(siteOrigin("https://example.com:443"), siteOrigin("https://example.com/x"));
    EXPECT_EQ(siteOrigin("http://127.0.0.1:48123/page.html"), "http://127.0.0.1:48123");
    EXPECT_EQ(siteOrigin("http://[::1]:8080/"), "http://[::1]:8080");
    EXPECT_EQ(siteOrigin("chrome://omnibox-popup.top-chrome/"), "chrome://omnibox-popup.top-chrome");
    for (const char* pattern : {"[*.]example.com", "https://[*.]example.com:443", "http://example.com:*", "*://example.com", "about:blank"})
        EXPECT_EQ(siteOrigin(pattern), std::nullopt) << pattern;
}

TEST(ChromiumPreferences, ClearingHistoryForgetsEveryVisitedSiteAndKeepsTheRestAndThePermissions) {
    BrowserHome home;
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    fs::permissions(prefs, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    const Json before = Json::parse(readFile(prefs));
    ASSERT_FALSE(visitRecords(before).empty());

    ASSERT_TRUE(home.platform().urlHistory().clearHistory());
    EXPECT_TRUE(home.platform().urlHistory().storeProblems().empty());
    const std::string bytes = readFile(prefs);
    const Json after = Json::parse(bytes);
    EXPECT_EQ(visitRecords(after), std::vector<std::string>{});
    EXPECT_FALSE(holdsText(bytes, "127.0.0.1"));
    EXPECT_EQ(withoutVisitMaps(after), withoutVisitMaps(before));
    EXPECT_EQ(fs::status(prefs).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    // Nothing left beside it from the rewrite.
    for (const auto& entry : fs::directory_iterator(home.chromiumProfile()))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".Preferences")) << entry.path();
}

TEST(ChromiumPreferences, OneSiteGoesWithItsLastVisitedPage) {
    BrowserHome home;
    const fs::path prefs = home.chromiumProfile() / "Preferences";
    const std::string original = readFile(prefs);
    const std::vector<std::string> records = visitRecords(Json::parse(original));
    platform::UrlHistory& history = home.platform().urlHistory();

    // Other pages of the site stay visited: its records stay, and the file is not rewritten.
    ASSERT_TRUE(history.deleteUrl(visitedPages()[3].url, 0));
    EXPECT_EQ(readFile(prefs), original);

    // The only page of its site: that site's records go, every other site's stay.
    const std::string delta = visitedPages()[4].url;
    ASSERT_EQ(delta.rfind("http://127.0.0.1:48124/", 0), 0u);
    ASSERT_TRUE(history.deleteUrl(delta, 0));
    EXPECT_TRUE(history.storeProblems().empty());
    std::vector<std::string> expected;
    for (const std::string& record : records)
        if (record.find("127.0.0.1:48124,") == std::string::npos)
            expected.push_back(record);
    ASSERT_LT(expected.size(), records.size());
    EXPECT_EQ(visitRecords(Json::parse(readFile(prefs))), expected);
}

TEST(ChromiumPreferences, APreferencesThatIsNoPlainJsonFileIsNamedAndLeftAsItIs) {
    struct Case {
        const char* name;
        std::function<void(const fs::path&)> plant;
        const char* reason;
    };
    const std::vector<Case> cases = {
        {"cut short", [](const fs::path& p) { fs::resize_file(p, fs::file_size(p) / 2); }, "is not valid JSON"},
        {"a link", [](const fs::path& p) {
             fs::rename(p, p.string() + ".real");
             fs::create_symlink("Preferences.real", p);
         }, "symbolic link"},
        {"a FIFO", [](const fs::path& p) {
             fs::remove(p);
             ASSERT_EQ(::mkfifo(p.c_str(), 0600), 0);
         }, "FIFO"},
        {"unreadable", [](const fs::path& p) { fs::permissions(p, fs::perms::none); }, "cannot be read"},
    };
    for (const Case& c : cases) {
        // The superuser reads any file whatever its permissions.
        if (std::string(c.name) == "unreadable" && ::geteuid() == 0)
            continue;
        BrowserHome home;
        const fs::path prefs = home.chromiumProfile() / "Preferences";
        c.plant(prefs);
        const fs::file_type kind = fs::symlink_status(prefs).type();
        const auto before = home.snapshot();
        platform::UrlHistory& history = home.platform().urlHistory();
        EXPECT_FALSE(history.clearHistory()) << c.name;
        EXPECT_TRUE(namesProblem(history, prefs, c.reason)) << c.name;
        // The rest of the history went all the same; the planted file is exactly what it was.
        EXPECT_EQ(listHistory(history).size(), 0u) << c.name;
        const auto after = home.snapshot();
        for (const auto& [path, bytes] : before)
            if (path.filename().string().starts_with("Preferences")) {
                EXPECT_EQ(after.at(path), bytes) << c.name << " " << path;
            }
        EXPECT_EQ(fs::symlink_status(prefs).type(), kind) << c.name;
    }
}
