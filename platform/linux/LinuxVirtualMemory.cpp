#include "platform/linux/LinuxVirtualMemory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>
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
bool mapped(std::uintptr_t begin, std::size_t size, bool needWrite) {
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

std::uintptr_t pageSize() {
    static const auto size = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

/// Copies `size` bytes at `from` into `to` through the kernel, which reports an address it cannot
/// read (unmapped, protected, a file mapping past the end of its file) instead of faulting.
/// False when any byte could not be read; also when the kernel refuses the call (a sandbox), so a
/// probe errs on the side of "bad".
bool kernelRead(std::uintptr_t from, void* to, std::size_t size) {
    iovec local{to, size};
    iovec remote{reinterpret_cast<void*>(from), size};
    const ssize_t got = ::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0);
    return got >= 0 && static_cast<std::size_t>(got) == size;
}

/// Whether every page of the range can really be read: a mapping may promise more than its pages
/// hold (a file mapped past its end), so one byte of each page is read through the kernel.
bool pagesReadable(std::uintptr_t begin, std::size_t size) {
    constexpr std::size_t Batch = 512; // pages per call, well below IOV_MAX
    std::array<char, Batch> sink{};
    std::array<iovec, Batch> remote{};
    const std::uintptr_t end = begin + size;
    std::uintptr_t page = begin;
    while (page < end) {
        std::size_t count = 0;
        for (; count < Batch && page < end; ++count) {
            remote[count] = {reinterpret_cast<void*>(page), 1};
            page = (page / pageSize() + 1) * pageSize();
        }
        iovec local{sink.data(), count};
        const ssize_t got = ::process_vm_readv(::getpid(), &local, 1, remote.data(), count, 0);
        if (got < 0 || static_cast<std::size_t>(got) != count)
            return false;
    }
    return true;
}

bool usable(const void* address, std::size_t size, bool needWrite) {
    if (size == 0)
        return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(address);
    return mapped(begin, size, needWrite) && pagesReadable(begin, size);
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
    // The kernel refuses to drop locked pages, and decommitted pages are unlocked anyway.
    ::munlock(address, size);
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
    return !usable(address, size, false);
}

bool LinuxVirtualMemory::isBadWrite(void* address, std::size_t size) {
    return !usable(address, size, true);
}

bool LinuxVirtualMemory::isBadString(const char* address, std::size_t max) {
    if (max == 0)
        return false;
    auto at = reinterpret_cast<std::uintptr_t>(address);
    if (at == 0)
        return true;
    // Page by page through the kernel's copy, so the search for the NUL never touches a bad page.
    std::vector<char> chunk(pageSize());
    std::size_t left = max;
    while (left > 0) {
        const std::size_t span = std::min<std::size_t>(left, pageSize() - at % pageSize());
        if (at + span < at || !kernelRead(at, chunk.data(), span))
            return true;
        if (std::memchr(chunk.data(), '\0', span))
            return false;
        left -= span;
        at += span;
    }
    return false;
}

int LinuxVirtualMemory::outOfMemoryScore() {
    std::ifstream in("/proc/self/oom_score_adj");
    int score = 0;
    return in >> score ? score : 0;
}

bool LinuxVirtualMemory::setOutOfMemoryScore(int score) {
    const int fd = ::open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const std::string text = std::to_string(score);
    const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return ::close(fd) == 0 && written;
}

} // namespace platform::linux
