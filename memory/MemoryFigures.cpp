#include "memory/MemoryFigures.h"

namespace memory {

core::Currency LargeIntToCurrency(std::uint64_t source) {
    return core::Currency::fromCount(source);
}

std::vector<MemoryLine> memoryLines(const platform::MemoryStatusRecord& r) {
    const auto figure = [](std::uint64_t bytes) { return LargeIntToCurrency(bytes).toString(); };
    const core::Currency usage = LargeIntToCurrency(r.ullTotalPageFile) - LargeIntToCurrency(r.ullAvailPageFile);
    // The blanks at the end of each caption are the only separator before the number.
    return {
        {"Label1", "Total Physical     " + figure(r.ullTotalPhys)},
        {"Label2", "Available Physical     " + figure(r.ullAvailPhys)},
        {"Label3", "Total PageFile     " + figure(r.ullTotalPageFile)},
        {"Label4", "Available PageFile     " + figure(r.ullAvailPageFile)},
        {"Label5", "Total Virtual     " + figure(r.ullTotalVirtual)},
        {"Label6", "Available Virtual     " + figure(r.ullAvailVirtual)},
        {"Label7", "Available Extended Virtual     " + figure(r.ullAvailExtendedVirtual)},
        {"Label9", "Current memory load:     " + std::to_string(r.dwMemoryLoad) + " %."},
        {"Label8", "PageFile Usage " + usage.toString()},
    };
}

platform::MemoryStatusRecord readMemoryStatus(platform::MemoryStatus& source) {
    platform::MemoryStatusRecord record {};
    record.dwLength = 64;
    platform::MemoryStatusRecord filled = record;
    if (source.query(filled))
        return filled;
    return record;
}

} // namespace memory
