#include "platform/linux/LinuxKnownFolders.h"

#include "platform/linux/Descriptors.h"

#include <cctype>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {

std::string LinuxKnownFolders::systemDirectory() {
    return m_env.winePrefix + "/drive_c/windows/system32";
}

std::string LinuxKnownFolders::fromRegistryPath(const std::string& path) {
    if (path.size() < 2 || path[1] != ':' || !std::isalpha(static_cast<unsigned char>(path[0])))
        return path; // not a drive path: already a path of this machine, or empty
    const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(path[0])));
    std::string out = letter == 'c' ? m_env.winePrefix + "/drive_c"
                                    : m_env.winePrefix + "/dosdevices/" + std::string(1, letter) + ":";
    std::string rest = path.substr(2);
    for (char& c : rest)
        if (c == '\\')
            c = '/';
    while (!rest.empty() && rest.back() == '/')
        rest.pop_back();
    if (!rest.empty() && rest[0] != '/')
        out += '/';
    return out + rest;
}

std::string LinuxKnownFolders::usersPath() {
    const std::string users = m_env.winePrefix + "/drive_c/users";
    struct stat st {};
    return ::lstat(users.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? users : std::string();
}

} // namespace platform::linux

namespace platform::linux {

std::vector<std::string> LinuxKnownFolders::systemFolders() {
    return {"/",    "/usr",   "/etc",    "/var",  "/boot", "/opt", "/srv",  "/bin", "/sbin",
            "/lib", "/lib32", "/lib64", "/libx32", "/root", "/dev", "/proc", "/sys", "/snap"};
}

std::vector<std::string> LinuxKnownFolders::homePaths() {
    std::vector<std::string> homes{m_env.home};
    // sudo gives root's home (or keeps the user's): the user it works for has theirs either way.
    if (runAs() == RunAs::AdministratorForUser)
        if (const passwd* pw = ::getpwuid(actingUser()); pw && pw->pw_dir && *pw->pw_dir && pw->pw_dir != m_env.home)
            homes.emplace_back(pw->pw_dir);
    return homes;
}

RunAs LinuxKnownFolders::runAs() {
    if (::geteuid() != 0)
        return RunAs::User;
    return actingUser() != 0 ? RunAs::AdministratorForUser : RunAs::Administrator;
}

} // namespace platform::linux
