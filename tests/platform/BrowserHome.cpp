#include "tests/platform/BrowserHome.h"

#include "tests/support/Process.h"

#include <fstream>

namespace fs = std::filesystem;

namespace testsupport {
namespace {

const fs::path kData = fs::path(SCOURMILL_TEST_DATA) / "browsers";

std::string firefoxProfileName() {
    std::ifstream ini(kData / "firefox/profiles/profiles.ini");
    for (std::string line; std::getline(ini, line);)
        if (line.rfind("Path=", 0) == 0)
            return line.substr(5);
    return {};
}

std::string le32(std::uint32_t v) {
    return std::string{char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
}

std::string be32(std::uint32_t v) {
    return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
}

void copyTree(const fs::path& from, const fs::path& to) {
    fs::create_directories(to);
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

} // namespace

const std::string kSite = "http://127.0.0.1:48123/";
const std::string kBookmarkedUrl = kSite + "scourmill-bookmarked-b00c.html";

const std::vector<VisitedPage>& visitedPages() {
    static const std::vector<VisitedPage> pages = {
        {kSite + "scourmill-alpha-7f3a.html", "Scourmill Alpha Title 7f3a"},
        {kSite + "scourmill-beta-91c2.html", "Scourmill Beta Title 91c2"},
        {kSite + "scourmill-untitled-4d8e.html", ""},
        {kSite + "scourmill-gamma-2e6b.html?q=scourmill-query-5521", "Scourmill Gamma Title 2e6b"},
        {"http://127.0.0.1:48124/scourmill-delta-6a1f.html", "Scourmill Delta Title 6a1f"},
        {"http://127.0.0.1:48125/scourmill-epsilon-83d0.html", "Scourmill Epsilon Title 83d0"},
        {kBookmarkedUrl, "Scourmill Bookmarked Title b00c"},
    };
    return pages;
}

BrowserHome::BrowserHome(CacheLayout layout, FirefoxRoot root)
    : m_home(m_dir.path() / "home"), m_layout(layout), m_firefoxName(firefoxProfileName()) {
    fs::create_directories(m_home);
    setEnv("HOME", m_home.string());
    setEnv("XDG_CONFIG_HOME", (m_home / ".config").string());
    setEnv("XDG_CACHE_HOME", (m_home / ".cache").string());
    m_firefoxRoot = root == FirefoxRoot::DotMozilla ? m_home / ".mozilla/firefox" : m_home / ".config/mozilla/firefox";
    copyTree(kData / "chromium/user-data", chromiumUserData());
    copyTree(kData / "chromium/cache/Default", chromiumCache().parent_path().parent_path());
    copyTree(kData / "firefox/profiles", m_firefoxRoot);
    copyTree(kData / "firefox/cache" / m_firefoxName / "cache2", firefoxCache());
    m_platform = platform::createNative();
    m_remover = std::make_unique<wipe::Engine>(*m_platform, nullptr, nullptr);
}

fs::path BrowserHome::chromiumCache() const {
    return m_layout == CacheLayout::UnderCacheHome ? m_home / ".cache/chromium/Default/Cache/Cache_Data"
                                                   : chromiumProfile() / "Cache/Cache_Data";
}

fs::path BrowserHome::firefoxCache() const {
    return m_layout == CacheLayout::UnderCacheHome ? m_home / ".cache/mozilla/firefox" / m_firefoxName / "cache2"
                                                   : firefoxProfile() / "cache2";
}

std::map<fs::path, std::string> BrowserHome::snapshot() const {
    std::map<fs::path, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(m_home))
        if (entry.is_regular_file() && !entry.is_symlink())
            files[entry.path()] = readFile(entry.path());
    return files;
}

std::vector<std::string> changedFiles(const std::map<fs::path, std::string>& before,
                                      const std::map<fs::path, std::string>& after) {
    std::vector<std::string> changes;
    for (const auto& [path, bytes] : after) {
        const auto was = before.find(path);
        if (was == before.end())
            changes.push_back("new: " + path.string());
        else if (was->second != bytes)
            changes.push_back("changed: " + path.string());
    }
    for (const auto& [path, bytes] : before)
        if (!after.count(path))
            changes.push_back("gone: " + path.string());
    return changes;
}

std::vector<platform::StatUrl> listHistory(platform::UrlHistory& history, const std::string& prefix, std::uint32_t flags) {
    std::vector<platform::StatUrl> records;
    auto enumerator = history.enumUrls();
    if (!enumerator)
        return records;
    enumerator->setFilter(prefix, flags);
    platform::StatUrl record;
    while (enumerator->next(record) == 1)
        records.push_back(record);
    return records;
}

bool holdsText(const std::string& bytes, const std::string& text) {
    std::string wide;
    for (char c : text) {
        wide += c;
        wide += '\0';
    }
    return bytes.find(text) != std::string::npos || bytes.find(wide) != std::string::npos;
}

std::string simpleCacheHead(const std::string& key, std::uint32_t version) {
    return le32(0xa7725c30) + le32(0xfcfb6d1b) + le32(version) + le32(static_cast<std::uint32_t>(key.size())) + le32(0) +
           le32(0) + key;
}

std::string cache2Metadata(std::uint32_t dataSize, const std::string& key, std::uint32_t version) {
    const std::uint32_t chunks = (dataSize + 262143) / 262144;
    return be32(0) + std::string(chunks * 2, '\0') + be32(version) + be32(1) + be32(0) + be32(0) + be32(0) + be32(0) +
           be32(static_cast<std::uint32_t>(key.size())) + be32(0) + key + '\0' + be32(dataSize);
}

std::string integrityOf(const fs::path& path) {
    const CliResult r = runCommand("sqlite3 " + shellQuoted(path) + " 'PRAGMA integrity_check'");
    return r.code == 0 ? r.out : "sqlite3 failed: " + r.err;
}

} // namespace testsupport
