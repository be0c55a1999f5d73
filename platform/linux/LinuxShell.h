#pragma once
// The desktop shell on Linux: xdg-open for the default handler, spawned directly (no shell command
// line, so nothing in an address is ever interpreted), and sibling programs from the executable's
// own folder or the search path.

#include "platform/Shell.h"

#include <vector>

namespace platform::linux {

class LinuxShell final : public Shell {
public:
    bool open(const std::string& target) override;
    bool startProgram(const std::string& program) override;
    std::string executableName(const std::string& base) const override { return base; }
};

/// Starts `file` (a path, or a name looked up on PATH) with `arguments`, output to /dev/null,
/// without waiting; the child is reaped in the background. The child's id, or -1.
long spawnDetached(const std::string& file, const std::vector<std::string>& arguments);

} // namespace platform::linux
