#pragma once
// The running processes and the program file each one runs.

#include <optional>
#include <string>
#include <vector>

namespace platform {

class Processes {
public:
    virtual ~Processes() = default;

    /// Identifiers of the running processes, in the system's order.
    virtual std::vector<long> ids() = 0;
    /// The file name (no folder) of the program process `id` runs: "firefox-esr", or for a program
    /// under Wine its Windows name ("iexplore.exe"). Empty when the process cannot be inspected.
    virtual std::optional<std::string> programName(long id) = 0;
};

} // namespace platform
