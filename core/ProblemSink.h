#pragma once
// Where quiet failures go. The desktop program stays silent when a file or a value cannot be
// processed, as it always did; the core still tells a sink about every skipped item, and the
// command line prints them and exits with 1.

#include <string>

namespace core {

class ProblemSink {
public:
    virtual ~ProblemSink() = default;

    /// `item` (a path, a key, an address) was skipped for `reason`.
    virtual void skipped(const std::string& item, const std::string& reason) = 0;
};

/// A sink that forgets everything: the desktop program's quiet behaviour.
class QuietSink final : public ProblemSink {
public:
    void skipped(const std::string&, const std::string&) override {}
};

} // namespace core
