#pragma once
// The user's browser profiles and their locks (browsers/BrowserProfiles.h), looked for in the
// folders this process's environment names and reached through this system's files.

#include "browsers/BrowserProfiles.h"
#include "platform/linux/Environment.h"

#include <vector>

namespace platform::linux {

using browsers::BrowserFamily;
using browsers::BrowserProfile;

/// The user's folders of `env` the browsers keep their profiles in.
browsers::UserFolders userFolders(const Environment& env);

/// Every profile found in the user's folders of `env`.
std::vector<BrowserProfile> findBrowserProfiles(const Environment& env);

/// Whether a browser holds the profile now.
bool profileHeld(const BrowserProfile& profile);

} // namespace platform::linux
