#pragma once
// Processes on Linux, from /proc. A program under Wine runs as the Wine loader; its Windows program
// name is the last piece of its first command-line argument, which Wine sets to the Windows path.

#include "platform/Processes.h"

namespace platform::linux {

class LinuxProcesses final : public Processes {
public:
    std::vector<long> ids() override;
    std::optional<std::string> programName(long id) override;
};

/// The program name to report for an executable path and the process's first argument.
std::string programNameOf(const std::string& exePath, const std::string& firstArgument);

} // namespace platform::linux
