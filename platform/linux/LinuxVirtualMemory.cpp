#include "platform/linux/LinuxVirtualMemory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/mman.h>
#include <vector>

namespace platform::linux {
namespace {

struct Region {
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;
    bool readable = false;
    bool writable = false;
};

std::vector<Region> readMaps() {
    std::vector<Region> regions;
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        std::istringstream in(line);
        std::string range, perms;
        in >> range >> perms;
        const auto dash = range.find('-');
        if (dash == std::string::npos || perms.size() < 2)
            continue;
        Region r;
        r.start = std::stoull(range.substr(0, dash), nullptr, 16);
        r.end = std::stoull(range.substr(dash + 1), nullptr, 16);
        r.readable = perms[0] == 'r';
        r.writable = perms[1] == 'w';
        regions.push_back(r);
    }
    return regions;
}

/// Whether [begin, begin + size) lies in consecutive regions that all allow the access.
bool covered(std::uintptr_t begin, std::size_t size, bool needWrite) {
    if (size == 0)
        return true;
    if (begin == 0 || begin + size < begin)
        return false;
    const std::uintptr_t end = begin + size;
    std::uintptr_t at = begin;
    for (const Region& r : readMaps()) { // the kernel lists regions in address order
        if (r.end <= at)
            continue;
        if (r.start > at || !(needWrite ? r.writable : r.readable))
            return false;
        at = r.end;
        if (at >= end)
            return true;
    }
    return false;
}

} // namespace

void* LinuxVirtualMemory::commit(std::size_t size) {
    if (size == 0)
        return nullptr;
    void* block = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED)
        return nullptr;
    std::lock_guard lock(m_mutex);
    m_blocks[block] = size;
    return block;
}

bool LinuxVirtualMemory::lock(void* address, std::size_t size) {
    return ::mlock(address, size) == 0;
}

bool LinuxVirtualMemory::unlock(void* address, std::size_t size) {
    return ::munlock(address, size) == 0;
}

bool LinuxVirtualMemory::decommit(void* address, std::size_t size) {
    if (size == 0) {
        std::lock_guard lock(m_mutex);
        const auto it = m_blocks.find(address);
        if (it == m_blocks.end())
            return false;
        size = it->second;
    }
    // The pages read as zeros afterwards, as freshly committed ones would.
    return ::madvise(address, size, MADV_DONTNEED) == 0;
}

bool LinuxVirtualMemory::release(void* address) {
    std::size_t size = 0;
    {
        std::lock_guard lock(m_mutex);
        const auto it = m_blocks.find(address);
        if (it == m_blocks.end())
            return false;
        size = it->second;
        m_blocks.erase(it);
    }
    return ::munmap(address, size) == 0;
}

bool LinuxVirtualMemory::isBadRead(const void* address, std::size_t size) {
    return !covered(reinterpret_cast<std::uintptr_t>(address), size, false);
}

bool LinuxVirtualMemory::isBadWrite(void* address, std::size_t size) {
    return !covered(reinterpret_cast<std::uintptr_t>(address), size, true);
}

bool LinuxVirtualMemory::isBadString(const char* address, std::size_t max) {
    if (max == 0)
        return false;
    auto at = reinterpret_cast<std::uintptr_t>(address);
    if (at == 0)
        return true;
    std::size_t left = max;
    for (const Region& r : readMaps()) {
        if (r.end <= at)
            continue;
        if (r.start > at || !r.readable)
            return true;
        const std::size_t span = std::min<std::size_t>(left, r.end - at);
        if (std::memchr(reinterpret_cast<const void*>(at), '\0', span))
            return false;
        left -= span;
        if (left == 0)
            return false;
        at = r.end;
    }
    return true;
}

} // namespace platform::linux
