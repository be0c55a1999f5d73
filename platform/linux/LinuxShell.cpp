#include "platform/linux/LinuxShell.h"

#include <climits>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace platform::linux {
namespace {

std::string executableFolder() {
    char path[PATH_MAX];
    const ssize_t n = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0)
        return {};
    std::string exe(path, static_cast<std::size_t>(n));
    return exe.substr(0, exe.rfind('/'));
}

bool isExecutableFile(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

} // namespace

long spawnDetached(const std::string& file, const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(file.c_str()));
    for (const auto& a : arguments)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attr;
    ::posix_spawnattr_init(&attr);
    ::posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSID);
    pid_t pid = -1;
    const int rc = ::posix_spawnp(&pid, file.c_str(), &actions, &attr, argv.data(), environ);
    ::posix_spawnattr_destroy(&attr);
    ::posix_spawn_file_actions_destroy(&actions);
    if (rc != 0)
        return -1;
    // Nobody waits for these children; a small thread does, so that none is left a zombie.
    std::thread([pid] { ::waitpid(pid, nullptr, 0); }).detach();
    return pid;
}

bool LinuxShell::open(const std::string& target) {
    if (target.empty())
        return false;
    return spawnDetached("xdg-open", {target}) > 0;
}

bool LinuxShell::startProgram(const std::string& program) {
    if (program.empty() || program.find('/') != std::string::npos)
        return false;
    const std::string sibling = executableFolder() + "/" + program;
    if (isExecutableFile(sibling))
        return spawnDetached(sibling, {}) > 0;
    return spawnDetached(program, {}) > 0;
}

} // namespace platform::linux
