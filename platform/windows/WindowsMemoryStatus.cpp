#include "platform/windows/WindowsMemoryStatus.h"

#include <windows.h>

namespace platform::windows {

static_assert(sizeof(MEMORYSTATUSEX) == 64, "the record the monitor describes is 64 bytes");

bool WindowsMemoryStatus::query(MemoryStatusRecord& record) {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!::GlobalMemoryStatusEx(&status))
        return false;
    record.dwLength = status.dwLength;
    record.dwMemoryLoad = status.dwMemoryLoad;
    record.ullTotalPhys = status.ullTotalPhys;
    record.ullAvailPhys = status.ullAvailPhys;
    record.ullTotalPageFile = status.ullTotalPageFile;
    record.ullAvailPageFile = status.ullAvailPageFile;
    record.ullTotalVirtual = status.ullTotalVirtual;
    record.ullAvailVirtual = status.ullAvailVirtual;
    record.ullAvailExtendedVirtual = status.ullAvailExtendedVirtual;
    return true;
}

} // namespace platform::windows
