#pragma once
// The desktop shell: opening a document or address with its default handler and starting programs.

#include <string>

namespace platform {

class Shell {
public:
    virtual ~Shell() = default;

    /// Opens `target` (an address or a path) with the desktop's default handler, without waiting.
    /// No shell command line is involved. False when the handler could not be started.
    virtual bool open(const std::string& target) = 0;
    /// Starts `program` without arguments and without waiting: first from the folder of the running
    /// executable, then from the search path. False when it cannot be started.
    virtual bool startProgram(const std::string& program) = 0;
    /// The file name the platform gives an executable called `base` ("tavipop" / "tavipop.exe").
    virtual std::string executableName(const std::string& base) const = 0;
};

} // namespace platform
