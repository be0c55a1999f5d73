#pragma once
// The roots the Linux backends work under, read from the environment the platform is built from.

#include "platform/Environment.h"

#include <string>

namespace platform::linux {

struct Environment {
    std::string home;         ///< $HOME
    std::string tempDir;      ///< $TMPDIR when absolute and an existing folder, else /tmp
    std::string winePrefix;   ///< $WINEPREFIX, default ~/.wine
    std::string dataHome;     ///< $XDG_DATA_HOME, default ~/.local/share
    std::string configHome;   ///< $XDG_CONFIG_HOME, default ~/.config
    std::string cacheHome;    ///< $XDG_CACHE_HOME, default ~/.cache
    /// The mount table to read: $SCOURMILL_MOUNTINFO when set (tests give a scratch table), else
    /// /proc/self/mountinfo.
    std::string mountInfo = "/proc/self/mountinfo";
    /// The folder holding the folders of running wineservers: $SCOURMILL_WINESERVERS when set
    /// (tests give a scratch folder); empty for Wine's own (see LinuxRegistry).
    std::string wineServers;

    static Environment from(const platform::Environment& variables);
};

} // namespace platform::linux
