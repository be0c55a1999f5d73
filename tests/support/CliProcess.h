#pragma once
// Running a command-line program as a user or a script does: a real process through the shell,
// with no terminal on its standard input, its standard output kept apart from its messages.

#include <filesystem>
#include <string>

namespace testsupport {

struct CliResult {
    int code = -1;   ///< exit status, -1 when the process did not exit normally
    std::string out; ///< standard output, byte for byte
    std::string err; ///< standard error

    /// Output and messages together, as a user sees them on a terminal.
    std::string seen() const { return out + err; }
};

/// Runs `commandLine` (already shell-quoted) with stdin from /dev/null.
CliResult runCommand(const std::string& commandLine);

/// Runs scourmill-cli with `arguments` (already shell-quoted), stdin from /dev/null.
CliResult runCli(const std::string& arguments);

/// `path` in single quotes for the shell (paths with a quote in them are not supported).
std::string shellQuoted(const std::filesystem::path& path);

} // namespace testsupport
