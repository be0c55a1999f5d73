#include "browsers/ChromiumPreferences.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>

namespace browsers {
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

bool forgetSitesInPreferences(ProfileFiles& files, const std::string& path, const std::optional<std::string>& origin,
                              std::vector<StoreProblem>& problems) {
    bool parsed = true;
    const bool done = files.rewriteFile(
        path, kPreferencesLimit,
        [&](const std::string& text) -> std::optional<std::string> {
            Json root;
            try {
                root = Json::parse(text);
            } catch (const Json::parse_error& e) {
                problems.push_back({path, "is not valid JSON (at byte " + std::to_string(e.byte) + ")"});
                parsed = false;
                return std::nullopt;
            }
            if (removeVisitRecords(root, origin) == 0)
                return std::nullopt;
            // Written as compactly as the browser writes it; the parse checked every string is UTF-8.
            return root.dump();
        },
        problems);
    return done && parsed;
}

} // namespace browsers
