#include "platform/linux/Environment.h"

#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

bool isAbsoluteFolder(const std::string& path) {
    struct stat st {};
    return !path.empty() && path[0] == '/' && ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string absoluteOr(const std::string& value, const std::string& fallback) {
    return !value.empty() && value[0] == '/' ? value : fallback;
}

} // namespace

Environment Environment::from(const platform::Environment& variables) {
    const auto variable = [&variables](const char* name) { return platform::variable(variables, name); };
    Environment env;
    env.home = variable("HOME");
    if (env.home.empty()) {
        if (const passwd* pw = ::getpwuid(::getuid()); pw && pw->pw_dir)
            env.home = pw->pw_dir;
    }
    const std::string tmp = variable("TMPDIR");
    env.tempDir = isAbsoluteFolder(tmp) ? tmp : "/tmp";
    while (env.tempDir.size() > 1 && env.tempDir.back() == '/')
        env.tempDir.pop_back();
    env.winePrefix = absoluteOr(variable("WINEPREFIX"), env.home + "/.wine");
    env.dataHome = absoluteOr(variable("XDG_DATA_HOME"), env.home + "/.local/share");
    env.configHome = absoluteOr(variable("XDG_CONFIG_HOME"), env.home + "/.config");
    env.cacheHome = absoluteOr(variable("XDG_CACHE_HOME"), env.home + "/.cache");
    env.mountInfo = absoluteOr(variable("SCOURMILL_MOUNTINFO"), env.mountInfo);
    env.wineServers = absoluteOr(variable("SCOURMILL_WINESERVERS"), {});
    return env;
}

} // namespace platform::linux

namespace platform {

Environment processEnvironment() {
    Environment env;
    for (const char* name : {"HOME", "TMPDIR", "WINEPREFIX", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME",
                             "SCOURMILL_MOUNTINFO", "SCOURMILL_WINESERVERS"})
        if (const char* value = std::getenv(name))
            env[name] = value;
    return env;
}

} // namespace platform
