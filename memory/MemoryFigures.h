#pragma once
// The memory monitor's figures: the nine labels it shows, built from one memory-status record. The
// window and the command line both show exactly these lines.

#include "core/Currency.h"
#include "platform/MemoryStatus.h"

#include <string>
#include <vector>

namespace memory {

/// A 64-bit byte count as the monitor's fixed-point value (scaled by 10000; unscaled on overflow).
core::Currency LargeIntToCurrency(std::uint64_t source);

struct MemoryLine {
    std::string label;   ///< the label's object name: "Label1"
    std::string caption; ///< "Total Physical     4294967296"
};

/// The nine lines in the order they stand on the monitor, top to bottom: Label1 to Label7, Label9
/// (memory load), Label8 (page-file usage = total minus available commit, negative when the
/// record says so).
std::vector<MemoryLine> memoryLines(const platform::MemoryStatusRecord& record);

/// A fresh record from the platform: zeroed, dwLength 64, then filled; all zero when the query fails.
platform::MemoryStatusRecord readMemoryStatus(platform::MemoryStatus& source);

} // namespace memory
