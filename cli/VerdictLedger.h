#pragma once
// The destruction engine's verdicts, counted for the closing summary: a file is counted as
// overwritten only when the engine says every pass reached the device.

#include "cli/CountingPlatform.h"
#include "core/Verdict.h"

namespace cli {

class VerdictLedger final : public core::VerdictSink {
public:
    void record(const core::Verdict& verdict) override {
        if (verdict.folder) {
            m_counts.foldersDeleted += verdict.removed;
            return;
        }
        if (verdict.overwritten)
            m_counts.streamsOverwritten += verdict.streams;
        if (verdict.overwritten && verdict.removed)
            ++m_counts.filesOverwrittenAndDeleted;
        else if (verdict.overwritten)
            ++m_counts.filesOverwritten;
        else if (verdict.removed)
            ++m_counts.filesDeleted;
        m_counts.filesVerified += verdict.verified;
    }

    /// Adds the files and folders counted so far to `counts`.
    void addTo(ChangeCounts& counts) const {
        counts.filesOverwrittenAndDeleted += m_counts.filesOverwrittenAndDeleted;
        counts.filesOverwritten += m_counts.filesOverwritten;
        counts.streamsOverwritten += m_counts.streamsOverwritten;
        counts.filesDeleted += m_counts.filesDeleted;
        counts.foldersDeleted += m_counts.foldersDeleted;
        counts.filesVerified += m_counts.filesVerified;
    }

private:
    ChangeCounts m_counts;
};

} // namespace cli
