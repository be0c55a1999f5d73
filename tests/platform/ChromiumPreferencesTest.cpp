// The sites a Chromium profile's Preferences names, and a Preferences that is no plain JSON file,
// left as it is. What clearing and deleting take from a sound one is the URL history's test.

#include "tests/platform/BrowserHome.h"

#include "browsers/ChromiumPreferences.h"

#include <gtest/gtest.h>

#include <functional>
#include <sys/stat.h>
#include <unistd.h>

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
