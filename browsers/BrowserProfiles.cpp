#include "browsers/BrowserProfiles.h"

#include <algorithm>
#include <climits>
#include <sstream>

namespace browsers {
namespace {

// Relative to $XDG_CONFIG_HOME (and to $XDG_CACHE_HOME for their caches), in listing order.
const char* const kChromiumFolders[] = {
    "chromium",         "google-chrome",        "google-chrome-beta", "google-chrome-unstable",
    "BraveSoftware/Brave-Browser", "vivaldi",   "microsoft-edge",     "microsoft-edge-beta",
    "microsoft-edge-dev",
};

/// Sort key of a Chromium profile folder: Default, then Profile N by N, then the rest by name.
std::pair<long, std::string> profileOrder(const std::string& name) {
    if (name == "Default")
        return {0, ""};
    if (name.rfind("Profile ", 0) == 0 && name.size() > 8 && name.size() < 18 &&
        std::all_of(name.begin() + 8, name.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return {1 + std::stol(name.substr(8)), ""};
    return {LONG_MAX, name};
}

void addCache(ProfileFiles& files, std::vector<std::string>& caches, const std::string& path) {
    if (files.isFolder(path) && std::find(caches.begin(), caches.end(), path) == caches.end())
        caches.push_back(path);
}

void findChromium(ProfileFiles& files, const UserFolders& env, std::vector<BrowserProfile>& out) {
    for (const char* relative : kChromiumFolders) {
        const std::string userData = env.configHome + "/" + relative;
        std::vector<std::string> names = files.subfolders(userData);
        // A profile folder is one the browser has written its preferences or history into.
        std::erase_if(names, [&](const std::string& n) {
            const std::string folder = userData + "/" + n;
            return !files.exists(folder + "/Preferences") && !files.exists(folder + "/History");
        });
        std::sort(names.begin(), names.end(),
                  [](const std::string& a, const std::string& b) { return profileOrder(a) < profileOrder(b); });
        for (const std::string& name : names) {
            BrowserProfile p;
            p.family = BrowserFamily::Chromium;
            p.folder = userData + "/" + name;
            p.userDataFolder = userData;
            addCache(files, p.caches, env.cacheHome + "/" + relative + "/" + name + "/Cache/Cache_Data");
            addCache(files, p.caches, p.folder + "/Cache/Cache_Data");
            out.push_back(std::move(p));
        }
    }
}

/// profiles.ini names a few profiles; anything far larger is no such file.
constexpr std::size_t IniLimit = 1024 * 1024;

struct IniProfile {
    std::string path;
    bool relative = true;
};

std::vector<IniProfile> readProfilesIni(ProfileFiles& files, const std::string& file) {
    std::vector<IniProfile> out;
    std::istringstream in(files.readText(file, IniLimit));
    std::string line;
    bool inProfile = false;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line[0] == '[') {
            inProfile = line.rfind("[Profile", 0) == 0;
            if (inProfile)
                out.emplace_back();
            continue;
        }
        if (!inProfile)
            continue;
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
        if (key == "Path")
            out.back().path = value;
        else if (key == "IsRelative")
            out.back().relative = value != "0";
    }
    std::erase_if(out, [](const IniProfile& p) { return p.path.empty(); });
    return out;
}

void findFirefox(ProfileFiles& files, const UserFolders& env, std::vector<BrowserProfile>& out) {
    const std::string roots[] = {env.home + "/.mozilla/firefox", env.configHome + "/mozilla/firefox"};
    const std::string cacheRoot = env.cacheHome + "/mozilla/firefox";
    std::vector<std::string> seen;
    for (const std::string& root : roots) {
        for (const IniProfile& ini : readProfilesIni(files, root + "/profiles.ini")) {
            BrowserProfile p;
            p.family = BrowserFamily::Firefox;
            p.folder = ini.relative ? root + "/" + ini.path : ini.path;
            while (p.folder.size() > 1 && p.folder.back() == '/')
                p.folder.pop_back();
            p.userDataFolder = p.folder;
            if (!files.isFolder(p.folder) || std::find(seen.begin(), seen.end(), p.folder) != seen.end())
                continue;
            seen.push_back(p.folder);
            // The browser places the local data of a profile below its profiles folder at the same
            // relative place below the cache folder.
            if (p.folder.rfind(root + "/", 0) == 0)
                addCache(files, p.caches, cacheRoot + p.folder.substr(root.size()) + "/cache2");
            addCache(files, p.caches, p.folder + "/cache2");
            out.push_back(std::move(p));
        }
    }
}

long parsePid(const std::string& text) {
    if (text.empty() || text.size() > 10 || !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return -1;
    return std::stol(text);
}

bool chromiumHeld(ProfileFiles& files, const std::string& userData) {
    const std::string target = files.linkTarget(userData + "/SingletonLock");
    const auto dash = target.rfind('-');
    if (dash == std::string::npos)
        return false; // no lock, or not one the browser would honour either
    if (target.substr(0, dash) != files.hostName())
        return true; // another machine's browser, perhaps running: cannot tell, so keep away
    return files.processAlive(parsePid(target.substr(dash + 1)));
}

bool firefoxHeld(ProfileFiles& files, const std::string& profile) {
    const std::string target = files.linkTarget(profile + "/lock");
    if (const auto plus = target.rfind(":+");
        plus != std::string::npos && files.processAlive(parsePid(target.substr(plus + 2))))
        return true;
    return files.fileLocked(profile + "/.parentlock");
}

} // namespace

std::vector<BrowserProfile> findBrowserProfiles(ProfileFiles& files, const UserFolders& folders) {
    std::vector<BrowserProfile> out;
    findChromium(files, folders, out);
    findFirefox(files, folders, out);
    return out;
}

bool profileHeld(ProfileFiles& files, const BrowserProfile& profile) {
    return profile.family == BrowserFamily::Chromium ? chromiumHeld(files, profile.userDataFolder)
                                                      : firefoxHeld(files, profile.folder);
}

} // namespace browsers
