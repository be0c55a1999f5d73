#pragma once
// The running processes on Windows, through psapi: EnumProcesses for the identifiers, and the first
// module of each (EnumProcessModules, GetModuleFileNameExW) for its program file. A process the
// module list cannot be read from (another bitness, a protected process) is asked for its image
// name instead; one that cannot be opened at all has no name.

#include "platform/Processes.h"

namespace platform::windows {

class WindowsProcesses final : public Processes {
public:
    std::vector<long> ids() override;
    std::optional<std::string> programName(long id) override;
};

} // namespace platform::windows
