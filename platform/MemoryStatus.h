#pragma once
// The machine's memory figures, as the record GlobalMemoryStatusEx fills.

#include <cstdint>

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

class MemoryStatus {
public:
    virtual ~MemoryStatus() = default;

    /// Fills `record` (whose dwLength the caller set to 64); false, leaving it untouched, on failure.
    virtual bool query(MemoryStatusRecord& record) = 0;
};

} // namespace platform
