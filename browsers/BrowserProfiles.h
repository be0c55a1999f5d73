#pragma once
// The browser profiles of the user, found the way the browsers themselves lay them out:
// - Chromium-family browsers (Chromium, Google Chrome, Brave, Vivaldi, Microsoft Edge) keep a
//   user-data folder under $XDG_CONFIG_HOME with one folder per profile ("Default", "Profile 1",
//   ...). A profile below $XDG_CONFIG_HOME keeps its disk cache at the same relative place below
//   $XDG_CACHE_HOME; a profile made with a custom user-data folder keeps it inside itself. The
//   browser holds the whole user-data folder through its SingletonLock ("host-pid").
// - Firefox lists its profiles in profiles.ini (in ~/.mozilla/firefox, or in
//   $XDG_CONFIG_HOME/mozilla/firefox); a profile there keeps its cache2 below
//   $XDG_CACHE_HOME/mozilla/firefox, any other one inside itself. The browser holds a profile
//   through its "lock" link ("address:+pid") and an fcntl lock on ".parentlock".
// Both cache places are looked at for every profile, so either layout is found.

#include "browsers/ProfileFiles.h"

#include <string>
#include <vector>

namespace browsers {

enum class BrowserFamily { Chromium, Firefox };

struct BrowserProfile {
    BrowserFamily family = BrowserFamily::Chromium;
    std::string folder;          ///< the profile folder: History or places.sqlite live here
    std::string userDataFolder;  ///< Chromium: the user-data folder the profile belongs to; Firefox: the profile folder
    std::vector<std::string> caches; ///< existing disk-cache folders (Cache_Data or cache2), in order
};

/// Where the user's files are: $HOME, $XDG_CONFIG_HOME and $XDG_CACHE_HOME, defaults applied.
struct UserFolders {
    std::string home;
    std::string configHome;
    std::string cacheHome;
};

/// Every profile found: the Chromium-family browsers in a fixed order, then Firefox; within a
/// browser, "Default" first, then "Profile N" by number, then the rest by name (Chromium), or the
/// order of profiles.ini (Firefox).
std::vector<BrowserProfile> findBrowserProfiles(ProfileFiles& files, const UserFolders& folders);

/// Whether a browser holds the profile now: its lock names a live process of this machine (or a
/// process of another machine, which cannot be checked from here), or, for Firefox, another
/// process holds the lock on ".parentlock".
bool profileHeld(ProfileFiles& files, const BrowserProfile& profile);

} // namespace browsers
