#pragma once
// What every command of the command line gets: the platform, the terminal's prompts and problem
// sink, the exit code it sets, and the closing summary of what it changed.

#include "cli/StderrSink.h"
#include "cli/Summary.h"
#include "cli/TerminalPrompts.h"
#include "cli/VerdictLedger.h"
#include "platform/Platform.h"

#include <stdexcept>

namespace cli {

/// Thrown by a command for invalid input: the message goes to stderr and the exit code is 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Context {
    platform::Platform& platform;
    TerminalPrompts prompts;
    StderrSink problems;
    int exitCode = 0;
    Summary summary;
    VerdictLedger verdicts;
};

} // namespace cli
