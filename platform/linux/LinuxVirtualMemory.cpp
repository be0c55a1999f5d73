#include "platform/linux/LinuxVirtualMemory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/mman.h>
#include <pthread.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

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

/// Whether every page of the range can really be used, asked through the kernel, which reports an
/// address it cannot reach (unmapped, protected, a file mapping past the end of its file) instead of
/// faulting. One byte of each page is read; for a write probe each byte is then written back as it
/// was, which the kernel refuses for a page that is not writable. Like the system call the probes
/// stand in for, a write probe can race with another thread writing the same byte; its callers
/// probe memory they are about to overwrite anyway.
bool pagesUsable(std::uintptr_t begin, std::size_t size, bool needWrite) {
    if (begin == 0 || begin + size < begin)
        return false;
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
        if (needWrite) {
            const ssize_t put = ::process_vm_writev(::getpid(), &local, 1, remote.data(), count, 0);
            if (put < 0 || static_cast<std::size_t>(put) != count)
                return false;
        }
    }
    return true;
}

/// The highest address of the calling thread's stack, asked once per thread.
std::uintptr_t stackTop() {
    thread_local const std::uintptr_t top = [] {
        pthread_attr_t attr;
        if (::pthread_getattr_np(::pthread_self(), &attr) != 0)
            return std::uintptr_t{0};
        void* low = nullptr;
        std::size_t size = 0;
        const bool known = ::pthread_attr_getstack(&attr, &low, &size) == 0;
        ::pthread_attr_destroy(&attr);
        return known ? reinterpret_cast<std::uintptr_t>(low) + size : std::uintptr_t{0};
    }();
    return top;
}

/// Whether the range lies in the live part of the calling thread's stack, between this function's
/// frame and the stack's top: memory that is there, readable and writable, without asking. The
/// callers' own records (the cache listing copies each entry's head into one) live there.
[[gnu::noinline]] bool onLiveStack(std::uintptr_t begin, std::size_t size) {
    const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    const std::uintptr_t top = stackTop();
    return begin >= frame && begin + size >= begin && begin + size <= top;
}

} // namespace

bool LinuxVirtualMemory::usable(const void* address, std::size_t size, bool needWrite) {
    if (size == 0)
        return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(address);
    return ownSpan(begin) >= size || onLiveStack(begin, size) || pagesUsable(begin, size, needWrite);
}

std::size_t LinuxVirtualMemory::ownSpan(std::uintptr_t begin) {
    // A block this facility committed stays readable and writable until it is released, decommitted
    // pages included (they read as zeros), so the probes need not ask the kernel about it.
    std::lock_guard lock(m_mutex);
    auto it = m_blocks.upper_bound(reinterpret_cast<void*>(begin));
    if (it == m_blocks.begin())
        return 0;
    --it;
    const auto end = reinterpret_cast<std::uintptr_t>(it->first) + it->second.size;
    return begin < end ? end - begin : 0;
}

namespace {

/// Blocks up to this size are kept for the next commit when released, and zeroed rather than handed
/// back when decommitted: a listing that allocates one small block per entry would otherwise spend
/// most of its time mapping, faulting in and unmapping pages.
constexpr std::size_t SmallBlock = 64 * 1024;

std::size_t pageRounded(std::size_t size) {
    return (size + pageSize() - 1) / pageSize() * pageSize();
}

} // namespace

void* LinuxVirtualMemory::commit(std::size_t size) {
    if (size == 0)
        return nullptr;
    std::lock_guard lock(m_mutex);
    Block block{size, pageRounded(size)};
    void* address = nullptr;
    if (m_spare && m_spareBlock.capacity >= size) { // zeroed when it was put aside
        address = std::exchange(m_spare, nullptr);
        block.capacity = m_spareBlock.capacity;
    } else {
        address = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (address == MAP_FAILED)
            return nullptr;
    }
    m_blocks[address] = block;
    return address;
}

void* LinuxVirtualMemory::commitLarge(std::size_t size) {
    void* address = commit(size);
    // Transparent huge pages, where the system gives them on request; a refusal only costs speed.
    if (address && size > SmallBlock)
        ::madvise(address, size, MADV_HUGEPAGE);
    return address;
}

bool LinuxVirtualMemory::lock(void* address, std::size_t size) {
    return ::mlock(address, size) == 0;
}

bool LinuxVirtualMemory::unlock(void* address, std::size_t size) {
    if (size == 0)
        return true; // nothing to unlock; spare the call
    return ::munlock(address, size) == 0;
}

bool LinuxVirtualMemory::decommit(void* address, std::size_t size) {
    std::lock_guard lock(m_mutex);
    const auto it = m_blocks.find(address);
    if (size == 0) {
        if (it == m_blocks.end())
            return false;
        size = it->second.size;
    }
    // A small block of ours is zeroed in place and stays resident (and locked, if it was), ready
    // for the next commit: handing back and faulting in its few pages again costs more than it saves.
    if (it != m_blocks.end() && it->second.capacity <= SmallBlock) {
        std::memset(address, 0, std::min(size, it->second.capacity));
        return true;
    }
    // The kernel refuses to drop locked pages, and decommitted pages are unlocked anyway.
    ::munlock(address, size);
    // The pages read as zeros afterwards, as freshly committed ones would.
    return ::madvise(address, size, MADV_DONTNEED) == 0;
}

bool LinuxVirtualMemory::release(void* address) {
    Block block;
    {
        std::lock_guard lock(m_mutex);
        const auto it = m_blocks.find(address);
        if (it == m_blocks.end())
            return false;
        block = it->second;
        m_blocks.erase(it);
        if (block.capacity <= SmallBlock && !m_spare) {
            std::memset(address, 0, block.capacity);
            m_spare = address;
            m_spareBlock = block;
            return true;
        }
    }
    return ::munmap(address, block.capacity) == 0;
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
    // Inside a block of ours the NUL is looked for in place, up to the block's end.
    if (const std::size_t span = std::min(ownSpan(at), max); span > 0) {
        if (std::memchr(address, '\0', span) || span == max)
            return false;
        at += span;
        max -= span;
    }
    // Elsewhere page by page through the kernel's copy, so the search never touches a bad page.
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
