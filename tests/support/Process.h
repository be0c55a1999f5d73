#pragma once
// Real processes for tests. A command-line program run as a user or a script runs it: through the
// shell, with no terminal on its standard input, its standard output kept apart from its messages.
// A child running under a chosen program name (a copy of sleep, on Windows of the test sleeper,
// renamed), for code that watches the process list, and one that holds a file open, for code that
// must leave files in use alone.

#include "tests/support/Scratch.h"

#include <filesystem>
#include <functional>
#include <memory>
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

class ChildProcess {
public:
    /// Starts a program file called `programName` that sleeps, and waits until it runs under that name.
    explicit ChildProcess(const std::string& programName);
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }
    /// Ends the process and waits for it.
    void stop();

private:
    ScratchDir m_dir;
    pid_t m_pid = -1;
#ifdef _WIN32
    void* m_process = nullptr; ///< the process handle
#endif
};

#ifndef _WIN32
/// A child process that runs `setUp`, then waits until the object ends it: for a lock, a mapping or
/// an open file held by another process for as long as a test needs.
class PausedChild {
public:
    explicit PausedChild(const std::function<bool()>& setUp);
    ~PausedChild();
    PausedChild(const PausedChild&) = delete;
    PausedChild& operator=(const PausedChild&) = delete;

    /// Whether `setUp` worked in the child, which now waits.
    bool ready() const { return m_pid > 0; }

private:
    pid_t m_pid = -1;
};

/// A child holding a write lock on `folder`/lock (the folder made first), as a running wineserver
/// holds the lock of its prefix's server folder.
std::unique_ptr<PausedChild> holdWineServerLock(const std::string& folder);
#endif

} // namespace testsupport
