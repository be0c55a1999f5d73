#pragma once
// A scratch home holding the real browser profiles of tests/data/browsers, laid out as the
// browsers lay them out, with the environment pointed at it and a native platform built on it.

#include "platform/Platform.h"
#include "tests/support/Scratch.h"
#include "wipe/Engine.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace testsupport {

/// Where the disk caches go: below $XDG_CACHE_HOME, or inside the profile folders.
enum class CacheLayout { UnderCacheHome, InProfile };
/// Where Firefox's profiles.ini lives: ~/.mozilla/firefox or $XDG_CONFIG_HOME/mozilla/firefox.
enum class FirefoxRoot { DotMozilla, XdgConfig };

class BrowserHome {
public:
    explicit BrowserHome(CacheLayout layout = CacheLayout::UnderCacheHome, FirefoxRoot root = FirefoxRoot::DotMozilla);

    /// The native platform, built after the environment was pointed here.
    platform::Platform& platform() { return *m_platform; }
    /// A second native platform on the same home (another run of the program).
    std::unique_ptr<platform::Platform> freshPlatform() const { return platform::createNative(); }

    /// The program's engine on that platform, as the cleaning layer hands it to the stores.
    platform::Remover& remover() { return *m_remover; }

    std::filesystem::path chromiumUserData() const { return m_home / ".config/chromium"; }
    std::filesystem::path chromiumProfile() const { return chromiumUserData() / "Default"; }
    std::filesystem::path chromiumCache() const;
    std::filesystem::path firefoxProfile() const { return m_firefoxRoot / m_firefoxName; }
    std::filesystem::path firefoxCache() const;

    /// Every regular file below the home with its bytes.
    std::map<std::filesystem::path, std::string> snapshot() const;

private:
    ScratchDir m_dir;
    std::filesystem::path m_home;
    CacheLayout m_layout;
    std::filesystem::path m_firefoxRoot;
    std::string m_firefoxName;
    std::unique_ptr<platform::Platform> m_platform;
    std::unique_ptr<wipe::Engine> m_remover;
};

/// The addresses the committed profiles visited, with the page titles that go with them: most on
/// kSite, two (delta and epsilon) each the only page of a site of its own.
struct VisitedPage {
    std::string url;
    std::string title;
};
extern const std::string kSite;
const std::vector<VisitedPage>& visitedPages();
/// The visited page that is bookmarked in both profiles.
extern const std::string kBookmarkedUrl;

/// Every history record, with an optional filter.
std::vector<platform::StatUrl> listHistory(platform::UrlHistory& history, const std::string& prefix = "",
                                           std::uint32_t flags = 0);

/// The files that differ between two snapshots, each as "changed: PATH", "new: PATH" or "gone: PATH".
std::vector<std::string> changedFiles(const std::map<std::filesystem::path, std::string>& before,
                                      const std::map<std::filesystem::path, std::string>& after);

/// Whether `bytes` hold `text` as UTF-8 or as UTF-16LE.
bool holdsText(const std::string& bytes, const std::string& text);

/// The head of a simple-cache "_0" entry file holding `key`, its streams left out.
std::string simpleCacheHead(const std::string& key, std::uint32_t version = 5);
/// The metadata a cache2 entry file ends with, after `dataSize` bytes of data, holding `key`.
std::string cache2Metadata(std::uint32_t dataSize, const std::string& key, std::uint32_t version = 3);

/// PRAGMA integrity_check of the database file `path`, read through the sqlite3 shell.
std::string integrityOf(const std::filesystem::path& path);

} // namespace testsupport
