#pragma once
// The machine's memory figures, as the record GlobalMemoryStatusEx fills, and the limit set on this
// process's memory beside them.

#include <cstdint>
#include <optional>

namespace platform {

struct MemoryStatusRecord {
    std::uint32_t dwLength = 64;
    std::uint32_t dwMemoryLoad = 0;
    std::uint64_t ullTotalPhys = 0;
    std::uint64_t ullAvailPhys = 0;
    std::uint64_t ullTotalPageFile = 0;
    std::uint64_t ullAvailPageFile = 0;
    std::uint64_t ullTotalVirtual = 0;
    std::uint64_t ullAvailVirtual = 0;
    std::uint64_t ullAvailExtendedVirtual = 0;
};

/// A limit on the memory of this process and those it shares the limit with (a control group on
/// Linux). Reaching it ends processes as the machine running out of memory would, however much
/// the machine still has.
struct MemoryLimit {
    std::uint64_t limit = 0;    ///< bytes of memory the limit allows in all
    std::uint64_t headroom = 0; ///< bytes of memory and swap together still to be taken before it is reached
};

class MemoryStatus {
public:
    virtual ~MemoryStatus() = default;

    /// Fills `record` (whose dwLength the caller set to 64); false, leaving it untouched, on failure.
    virtual bool query(MemoryStatusRecord& record) = 0;
    /// The tightest limit set on this process's memory, read now; empty when none is set or none
    /// can be read.
    virtual std::optional<MemoryLimit> limit() { return std::nullopt; }
};

} // namespace platform
