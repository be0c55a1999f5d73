#include "platform/linux/LinuxProcesses.h"

#include <climits>
#include <dirent.h>
#include <fstream>
#include <unistd.h>

namespace platform::linux {
namespace {

std::string afterLast(const std::string& path, const char* separators) {
    const auto cut = path.find_last_of(separators);
    return cut == std::string::npos ? path : path.substr(cut + 1);
}

bool isWineLoader(const std::string& name) {
    return name == "wine" || name == "wine64" || name == "wine-preloader" || name == "wine64-preloader";
}

} // namespace

std::string programNameOf(const std::string& exePath, const std::string& firstArgument) {
    std::string name = afterLast(exePath, "/");
    // The kernel marks the executable of a replaced or deleted file.
    if (const std::string deleted = " (deleted)"; name.size() > deleted.size() &&
                                                   name.compare(name.size() - deleted.size(), deleted.size(), deleted) == 0)
        name.resize(name.size() - deleted.size());
    if (isWineLoader(name) && !firstArgument.empty())
        return afterLast(firstArgument, "\\/");
    return name;
}

std::vector<long> LinuxProcesses::ids() {
    std::vector<long> out;
    DIR* proc = ::opendir("/proc");
    if (!proc)
        return out;
    while (const dirent* e = ::readdir(proc)) {
        char* end = nullptr;
        const long pid = std::strtol(e->d_name, &end, 10);
        if (end && *end == '\0' && pid > 0)
            out.push_back(pid);
    }
    ::closedir(proc);
    return out;
}

std::optional<std::string> LinuxProcesses::programName(long id) {
    const std::string base = "/proc/" + std::to_string(id);
    char target[PATH_MAX];
    const ssize_t n = ::readlink((base + "/exe").c_str(), target, sizeof target - 1);
    if (n <= 0)
        return std::nullopt; // gone, a kernel thread, or another user's process
    std::ifstream cmdline(base + "/cmdline");
    std::string first;
    std::getline(cmdline, first, '\0');
    return programNameOf(std::string(target, static_cast<std::size_t>(n)), first);
}

} // namespace platform::linux
