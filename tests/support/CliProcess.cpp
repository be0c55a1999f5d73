#include "tests/support/CliProcess.h"

#include "tests/support/Scratch.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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

} // namespace testsupport
