#pragma once
// Skipped items named on stderr, one line each; any of them makes the command exit with 1. Notes
// are told the same way and change no exit code.

#include "core/ProblemSink.h"

namespace cli {

class StderrSink final : public core::ProblemSink {
public:
    void skipped(const std::string& item, const std::string& reason) override;
    void noted(const std::string& item, const std::string& text) override;
    int count() const { return m_count; }

private:
    int m_count = 0;
};

} // namespace cli
