#include "platform/windows/WindowsVirtualMemory.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace platform::windows {
namespace {

constexpr DWORD Readable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                           PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
constexpr DWORD Writable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;

/// The end of the region holding `at` when it is committed and allows `access`; 0 otherwise.
std::uintptr_t usableUntil(std::uintptr_t at, DWORD access) {
    MEMORY_BASIC_INFORMATION region{};
    if (::VirtualQuery(reinterpret_cast<const void*>(at), &region, sizeof region) != sizeof region)
        return 0;
    if (region.State != MEM_COMMIT || (region.Protect & (PAGE_GUARD | PAGE_NOACCESS)) || !(region.Protect & access))
        return 0;
    return reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
}

bool covered(const void* address, std::size_t size, DWORD access) {
    if (size == 0)
        return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(address);
    if (begin == 0 || begin + size < begin)
        return false;
    for (std::uintptr_t at = begin; at < begin + size;) {
        const std::uintptr_t end = usableUntil(at, access);
        if (end <= at)
            return false;
        at = end;
    }
    return true;
}

} // namespace

void* WindowsVirtualMemory::commit(std::size_t size) {
    if (size == 0)
        return nullptr;
    return ::VirtualAlloc(nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
}

bool WindowsVirtualMemory::lock(void* address, std::size_t size) {
    return ::VirtualLock(address, size) != 0;
}

bool WindowsVirtualMemory::unlock(void* address, std::size_t size) {
    return ::VirtualUnlock(address, size) != 0;
}

bool WindowsVirtualMemory::decommit(void* address, std::size_t size) {
    return ::VirtualFree(address, size, MEM_DECOMMIT) != 0;
}

bool WindowsVirtualMemory::release(void* address) {
    return address && ::VirtualFree(address, 0, MEM_RELEASE) != 0;
}

bool WindowsVirtualMemory::isBadRead(const void* address, std::size_t size) {
    return !covered(address, size, Readable);
}

bool WindowsVirtualMemory::isBadWrite(void* address, std::size_t size) {
    return !covered(address, size, Writable);
}

bool WindowsVirtualMemory::isBadString(const char* address, std::size_t max) {
    if (max == 0)
        return false;
    auto at = reinterpret_cast<std::uintptr_t>(address);
    if (at == 0)
        return true;
    std::size_t left = max;
    while (left > 0) {
        const std::uintptr_t end = usableUntil(at, Readable);
        if (end <= at)
            return true;
        const std::size_t span = std::min<std::size_t>(left, end - at);
        if (std::memchr(reinterpret_cast<const void*>(at), '\0', span))
            return false;
        left -= span;
        at = end;
    }
    return false;
}

} // namespace platform::windows
