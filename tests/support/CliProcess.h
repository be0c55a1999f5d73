#pragma once
// Running a command-line program as a user or a script does: a real process through the shell,
// with no terminal on its standard input, its standard output kept apart from its messages.

#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>

namespace testsupport {

struct CliResult {
    int code = -1;   ///< exit status, -1 when the process did not exit normally
    std::string out; ///< standard output, byte for byte
    std::string err; ///< standard error

    /// Output and messages together, as a user sees them on a terminal.
    std::string seen() const { return out + err; }
};

/// Whether `text` holds `part` anywhere: what the tests ask of a command's output and messages.
inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// Runs `commandLine` (already shell-quoted) with stdin from /dev/null.
CliResult runCommand(const std::string& commandLine);

/// Runs scourmill-cli with `arguments` (already shell-quoted), stdin from /dev/null.
CliResult runCli(const std::string& arguments);

/// scourmill-cli running in the background, for tests that watch it work and then interrupt it.
class BackgroundCli {
public:
    /// Starts scourmill-cli with `arguments` (already shell-quoted, redirections of its output
    /// included), stdin from /dev/null.
    explicit BackgroundCli(const std::string& arguments);
    /// Kills the process if it still runs.
    ~BackgroundCli();
    BackgroundCli(const BackgroundCli&) = delete;
    BackgroundCli& operator=(const BackgroundCli&) = delete;

    pid_t pid() const { return m_pid; }
    /// Sends `signal` and waits for the end: the exit status, -1 when the signal killed it.
    int stop(int signal);

private:
    pid_t m_pid = -1;
};

/// Asks `condition` every few milliseconds until it holds or 20 seconds have passed; its last answer.
bool waitUntil(const std::function<bool()>& condition);

/// `path` in single quotes for the shell (paths with a quote in them are not supported).
std::string shellQuoted(const std::filesystem::path& path);

} // namespace testsupport
