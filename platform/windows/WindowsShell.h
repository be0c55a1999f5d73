#pragma once
// The desktop shell on Windows: ShellExecuteW opens documents and addresses with their default
// handler; programs start with CreateProcessW, which looks in the running program's folder first
// and then on the search path.

#include "platform/Shell.h"

namespace platform::windows {

class WindowsShell final : public Shell {
public:
    bool open(const std::string& target) override;
    bool startProgram(const std::string& program) override;
    std::string executableName(const std::string& base) const override { return base + ".exe"; }
};

} // namespace platform::windows
