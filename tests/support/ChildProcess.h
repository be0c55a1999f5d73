#pragma once
// Real child processes for tests: one running under a chosen program name (a copy of sleep, on
// Windows of the test sleeper, renamed), for code that watches the process list, and one that holds
// a file open, for code that must leave files in use alone.

#include "tests/support/Scratch.h"

#include <string>
#include <sys/types.h>

namespace testsupport {

class ChildProcess {
public:
    /// Starts a program file called `programName` that sleeps, and waits until it runs under that name.
    explicit ChildProcess(const std::string& programName);
    ~ChildProcess();
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

/// A child process (sleep) that holds `path` open for reading until it ends.
class FileHolder {
public:
    explicit FileHolder(const std::string& path);
    ~FileHolder();
    FileHolder(const FileHolder&) = delete;
    FileHolder& operator=(const FileHolder&) = delete;

    /// Whether the child runs with the file open.
    bool holding() const { return m_holding; }

private:
    pid_t m_pid = -1;
    bool m_holding = false;
#ifdef _WIN32
    void* m_process = nullptr;
#endif
};

} // namespace testsupport
