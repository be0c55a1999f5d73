#pragma once
// A real child process running under a chosen program name (a copy of sleep renamed), for tests of
// code that watches the process list.

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
};

} // namespace testsupport
