#include "platform/linux/ChromiumPreferences.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/ReplaceFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace platform::linux {
namespace {

// The JSON keeps its members in the order the browser wrote them.
using Json = nlohmann::ordered_json;

/// The per-site maps that only record visits.
constexpr const char* kVisitMaps[] = {"site_engagement", "media_engagement", "important_site_info", "app_banner"};

/// Far larger than any browser writes: no Preferences file.
constexpr std::size_t kPreferencesLimit = 256 * 1024 * 1024;

std::string lower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

std::string_view defaultPort(const std::string& scheme) {
    if (scheme == "http" || scheme == "ws")
        return "80";
    if (scheme == "https" || scheme == "wss")
        return "443";
    if (scheme == "ftp")
        return "21";
    return {};
}

/// Whether `a` and `b` describe the same state of one file: another writer changes one of these.
bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// Removes the matching entries of each visit map; how many went.
std::size_t removeVisitRecords(Json& root, const std::optional<std::string>& origin) {
    const Json::json_pointer at("/profile/content_settings/exceptions");
    if (!root.is_object() || !root.contains(at) || !root[at].is_object())
        return 0;
    Json& exceptions = root[at];
    std::size_t removed = 0;
    for (const char* name : kVisitMaps) {
        const auto map = exceptions.find(name);
        if (map == exceptions.end() || !map->is_object())
            continue;
        for (auto entry = map->begin(); entry != map->end();) {
            // A key is "primary,secondary"; the primary pattern names the site.
            const std::string& key = entry.key();
            if (!origin || siteOrigin(std::string_view(key).substr(0, key.find(','))) == *origin) {
                entry = map->erase(entry);
                ++removed;
            } else {
                ++entry;
            }
        }
    }
    return removed;
}

} // namespace

std::optional<std::string> siteOrigin(std::string_view text) {
    const std::size_t separator = text.find("://");
    if (separator == std::string_view::npos || separator == 0)
        return std::nullopt;
    const std::string scheme = lower(text.substr(0, separator));
    if (scheme.find_first_of("*[]") != std::string::npos)
        return std::nullopt;
    std::string_view authority = text.substr(separator + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos)
        authority = authority.substr(at + 1);
    // An IPv6 host is bracketed, its colons inside the brackets.
    const std::size_t hostEnd = authority.starts_with('[') ? authority.find(']') : 0;
    if (hostEnd == std::string_view::npos)
        return std::nullopt;
    const std::size_t colon = authority.find(':', hostEnd);
    const std::string host = lower(authority.substr(0, colon));
    std::string_view port = colon == std::string_view::npos ? std::string_view() : authority.substr(colon + 1);
    if (host.empty() || host.find('*') != std::string::npos ||
        port.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    while (port.size() > 1 && port.front() == '0')
        port.remove_prefix(1);
    std::string origin = scheme + "://" + host;
    if (!port.empty() && port != defaultPort(scheme))
        origin += ":" + std::string(port);
    return origin;
}

bool forgetSitesInPreferences(const std::string& path, const std::optional<std::string>& origin,
                              std::vector<StoreProblem>& problems) {
    // Read only as a regular file reached without a link: whatever else stands in its place is
    // not the browser's own file and is not rewritten.
    FileText file = readRegularFile(AT_FDCWD, path, kPreferencesLimit, false);
    if (file.result == ReadResult::Missing)
        return true;
    if (file.result != ReadResult::Read) {
        problems.push_back({path, readProblem(file.result, file.st.st_mode)});
        return false;
    }
    Json root;
    try {
        root = Json::parse(file.text);
    } catch (const Json::parse_error& e) {
        problems.push_back({path, "is not valid JSON (at byte " + std::to_string(e.byte) + ")"});
        return false;
    }
    if (removeVisitRecords(root, origin) == 0)
        return true;
    // Written as compactly as the browser writes it; the parse checked every string is UTF-8.
    const std::string text = root.dump();
    // A file changed since it was read holds what this rewrite would lose.
    struct stat now {};
    if (::lstat(path.c_str(), &now) != 0 || !sameFile(now, file.st)) {
        problems.push_back({path, "changed while it was being cleaned"});
        return false;
    }
    if (!replaceFile(path, text, 0600)) {
        problems.push_back({path, std::string("could not be rewritten: ") + std::strerror(errno)});
        return false;
    }
    return true;
}

} // namespace platform::linux
