#pragma once
// The sites a Chromium-family profile remembers visiting in its "Preferences" file (JSON), outside
// its history databases: under profile.content_settings.exceptions, maps keyed by site pattern
// ("http://host:port,*") that gain an entry on the first visit of each site - the engagement score
// that ranks sites for the new-tab page and the omnibox, the media engagement count, the sites
// ranked important from those scores, and the visits counted towards offering an app install.
// Everything else in the file stays: the browser's settings, and every choice the user made for a
// site (permissions, zoom, pop-ups), which records a decision rather than a visit.

#include "browsers/ProfileFiles.h"
#include "platform/UrlCache.h" // StoreProblem

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace browsers {

using platform::StoreProblem;

/// The origin an address or a site pattern names: "scheme://host", with ":port" when the port is
/// not the scheme's default, in lower case; nullopt for a pattern with a wildcard in its scheme,
/// host or port, or for text that names no host.
std::optional<std::string> siteOrigin(std::string_view urlOrPattern);

/// Removes from the Preferences file at `path`, reached through `files`, the visit records of the
/// site `origin` (as siteOrigin gives it), or of every site when nullopt. The file is rewritten
/// only when a record went, through a new file renamed over it, keeping its permissions. True when
/// no such record is left (also when there is no file); false, with the file named in `problems`,
/// when it is not a regular file, cannot be read, is not JSON or could not be rewritten: it is
/// then left as it was.
bool forgetSitesInPreferences(ProfileFiles& files, const std::string& path, const std::optional<std::string>& origin,
                              std::vector<StoreProblem>& problems);

} // namespace browsers
