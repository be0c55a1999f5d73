// The sites a Chromium profile's Preferences names, and a Preferences that is no JSON or a link,
// left as it is. What clearing and deleting take from a sound one is the URL history's test.

#include "tests/platform/BrowserHome.h"

#include "browsers/ChromiumPreferences.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fs = std::filesystem;
using namespace testsupport;

TEST(ChromiumPreferences, OriginsOfAddressesAndSitePatterns) {
    using browsers::siteOrigin;
    EXPECT_EQ(siteOrigin("HTTP://User:pw@Example.COM:80/a?b#c"), "http://example.com");
    EXPECT_EQ(siteOrigin("https://example.com:443"), siteOrigin("https://example.com/x"));
    EXPECT_EQ(siteOrigin("http://[::1]:8080/"), "http://[::1]:8080");
    for (const char* pattern : {"[*.]example.com", "http://example.com:*", "*://example.com"})
        EXPECT_EQ(siteOrigin(pattern), std::nullopt) << pattern;
}

// What cannot be read as a regular file (a FIFO, say) is refused by the same reader as the trash's
// records, tested there; a link in its place must not be written through.
TEST(ChromiumPreferences, APreferencesThatIsNoJsonOrALinkIsNamedAndLeftAsItIs) {
    for (const std::string reason : {"is not valid JSON", "symbolic link"}) {
        BrowserHome home;
        const fs::path prefs = home.chromiumProfile() / "Preferences";
        if (reason == "symbolic link") {
            fs::rename(prefs, prefs.string() + ".real");
            fs::create_symlink("Preferences.real", prefs);
        } else {
            fs::resize_file(prefs, fs::file_size(prefs) / 2);
        }
        const auto before = home.snapshot();
        platform::UrlHistory& history = home.platform().urlHistory();
        EXPECT_FALSE(history.clearHistory(home.remover())) << reason;
        const auto problems = history.storeProblems();
        EXPECT_TRUE(std::any_of(problems.begin(), problems.end(), [&](const auto& p) {
            return p.file == prefs.string() && p.reason.find(reason) != std::string::npos;
        })) << reason;
        // The rest of the history went all the same; the planted file is exactly what it was.
        EXPECT_EQ(listHistory(history).size(), 0u) << reason;
        EXPECT_EQ(fs::is_symlink(prefs), reason == "symbolic link");
        const auto after = home.snapshot();
        for (const auto& [path, bytes] : before)
            if (path.filename().string().starts_with("Preferences")) {
                EXPECT_EQ(after.at(path), bytes) << reason << " " << path;
            }
    }
}
