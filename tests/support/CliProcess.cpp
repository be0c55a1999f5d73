#include "tests/support/CliProcess.h"

#include "tests/support/Scratch.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <sys/wait.h>

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

std::string shellQuoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

} // namespace testsupport
