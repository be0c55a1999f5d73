#pragma once
// What the read-back after a wipe found, in one line for a window: how many files were read back
// from the device and found as the last pass wrote them, or the first one that was not.

#include "core/Verdict.h"

#include <string>

namespace wipe {

class VerifyReport final : public core::VerdictSink {
public:
    void record(const core::Verdict& verdict) override {
        if (verdict.verified)
            ++m_verified;
        else if (verdict.overwritten && m_failure.empty())
            m_failure = verdict.item + ": " + verdict.why;
    }
    void clear() { *this = VerifyReport(); }
    /// "3 files verified", or the first file that failed and why; empty when nothing was read back.
    std::string text() const {
        if (!m_failure.empty())
            return "Not verified: " + m_failure;
        if (m_verified == 0)
            return {};
        return std::to_string(m_verified) + (m_verified == 1 ? " file" : " files") + " verified";
    }

private:
    int m_verified = 0;
    std::string m_failure;
};

} // namespace wipe
