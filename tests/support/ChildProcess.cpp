#include "tests/support/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace testsupport {

ChildProcess::ChildProcess(const std::string& programName) {
    const auto exe = m_dir.path() / programName;
    std::filesystem::copy_file("/bin/sleep", exe);
    std::string path = exe.string();
    char seconds[] = "60";
    char* argv[] = {path.data(), seconds, nullptr};
    if (::posix_spawn(&m_pid, path.c_str(), nullptr, nullptr, argv, environ) != 0) {
        m_pid = -1;
        return;
    }
    // Right after spawn the child may not have reached exec yet.
    const std::string link = "/proc/" + std::to_string(m_pid) + "/exe";
    for (int i = 0; i < 200; ++i) {
        std::error_code ec;
        if (std::filesystem::read_symlink(link, ec).filename() == programName)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

ChildProcess::~ChildProcess() {
    stop();
}

void ChildProcess::stop() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

FileHolder::FileHolder(const std::string& path) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 3, path.c_str(), O_RDONLY, 0);
    char sleep[] = "/bin/sleep";
    char seconds[] = "60";
    char* argv[] = {sleep, seconds, nullptr};
    const bool spawned = ::posix_spawn(&m_pid, sleep, &actions, nullptr, argv, environ) == 0;
    ::posix_spawn_file_actions_destroy(&actions);
    if (!spawned) {
        m_pid = -1;
        return;
    }
    const std::string fd = "/proc/" + std::to_string(m_pid) + "/fd/3";
    const std::string exe = "/proc/" + std::to_string(m_pid) + "/exe";
    for (int i = 0; i < 200 && !m_holding; ++i) {
        std::error_code ec;
        // Before exec the descriptor may already be there; wait for sleep itself to hold it.
        m_holding = std::filesystem::read_symlink(exe, ec).filename() == "sleep" && std::filesystem::exists(fd, ec);
        if (!m_holding)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

FileHolder::~FileHolder() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
}

} // namespace testsupport
