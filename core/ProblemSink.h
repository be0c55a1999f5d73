#pragma once
// Where quiet failures go. The desktop program does not interrupt the user with a message for
// every file or value that cannot be processed; the core still tells a sink about every skipped
// item, the window reports what matters on its status line, and the command line prints each one
// and exits with 1.

#include <string>

namespace core {

class ProblemSink {
public:
    virtual ~ProblemSink() = default;

    /// `item` (a path, a key, an address) was skipped for `reason`.
    virtual void skipped(const std::string& item, const std::string& reason) = 0;
    /// `item` is worth telling about (`text`) but nothing failed: a store this system does not have.
    virtual void noted(const std::string& /*item*/, const std::string& /*text*/) {}
};

/// A sink that forgets everything: the desktop program's quiet behaviour.
class QuietSink final : public ProblemSink {
public:
    void skipped(const std::string&, const std::string&) override {}
};

} // namespace core
