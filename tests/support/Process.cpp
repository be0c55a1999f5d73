#include "tests/support/Process.h"

#include "tests/support/Scratch.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>

extern char** environ;

namespace testsupport {

CliResult runCommand(const std::string& commandLine) {
    static std::atomic<int> counter{0};
    const std::filesystem::path errFile = scratchRoot() / ("stderr-" + std::to_string(counter++) + ".txt");
    CliResult r;
    const std::string command = commandLine + " </dev/null 2>" + shellQuoted(errFile);
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return r;
    std::array<char, 4096> buffer{};
    while (std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe))
        r.out.append(buffer.data(), n);
    const int status = ::pclose(pipe);
    r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    r.err = readFile(errFile);
    std::error_code ec;
    std::filesystem::remove(errFile, ec);
    return r;
}

CliResult runCli(const std::string& arguments) {
    return runCommand(std::string(SCOURMILL_CLI) + " " + arguments);
}

BackgroundCli::BackgroundCli(const std::string& arguments) {
    const std::string command = "exec " + std::string(SCOURMILL_CLI) + " " + arguments + " </dev/null";
    m_pid = ::fork();
    if (m_pid == 0) {
        ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
}

BackgroundCli::~BackgroundCli() {
    if (m_pid > 0)
        stop(SIGKILL);
}

int BackgroundCli::stop(int signal) {
    if (m_pid <= 0)
        return -1;
    ::kill(m_pid, signal);
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool waitUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return condition();
}

std::string shellQuoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}


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

void ChildProcess::stop() {
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
}

PausedChild::PausedChild(const std::function<bool()>& setUp) {
    int ready[2];
    if (::pipe(ready) != 0)
        return;
    const pid_t pid = ::fork();
    if (pid == 0) {
        const char ok = setUp() ? 'y' : 'n';
        (void)!::write(ready[1], &ok, 1);
        ::pause();
        ::_exit(0);
    }
    ::close(ready[1]);
    char ok = 'n';
    (void)!::read(ready[0], &ok, 1);
    ::close(ready[0]);
    if (pid > 0 && ok != 'y') {
        ::kill(pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        return;
    }
    m_pid = pid;
}

PausedChild::~PausedChild() {
    if (m_pid > 0 && ::kill(m_pid, SIGKILL) == 0)
        ::waitpid(m_pid, nullptr, 0);
}

std::unique_ptr<PausedChild> holdWineServerLock(const std::string& folder) {
    std::filesystem::create_directories(folder);
    return std::make_unique<PausedChild>([&folder] {
        const int fd = ::open((folder + "/lock").c_str(), O_RDWR | O_CREAT, 0600);
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        return fd >= 0 && ::fcntl(fd, F_SETLK, &lock) == 0;
    });
}

} // namespace testsupport
