#pragma once
// Memory figures on Linux, from /proc/meminfo and the process's own address space; the limit, from
// the memory cgroups of the process (CgroupMemory.h).

#include "platform/MemoryStatus.h"

#include <string>

namespace platform::linux {

class LinuxMemoryStatus final : public MemoryStatus {
public:
    /// Finds the cgroup filesystems in the mount table file `mountInfo`.
    explicit LinuxMemoryStatus(std::string mountInfo) : m_mountInfo(std::move(mountInfo)) {}

    bool query(MemoryStatusRecord& record) override;
    std::optional<MemoryLimit> limit() override;

private:
    std::string m_mountInfo;
};

/// Fills the record from meminfo text and the process's mapped size (VmSize, bytes): total phys =
/// MemTotal, avail phys = MemAvailable, total page file = MemTotal + SwapTotal, avail page file =
/// MemAvailable + SwapFree, load = used share of MemTotal in percent. False when a field is missing.
bool fillFromMemInfo(const std::string& meminfo, std::uint64_t processMapped, MemoryStatusRecord& record);

} // namespace platform::linux
