#pragma once
// Virtual memory on Linux: mmap blocks, mlock, and range probes answered from /proc/self/maps, so
// that probing a bad address never touches it.

#include "platform/VirtualMemory.h"

#include <map>
#include <mutex>

namespace platform::linux {

class LinuxVirtualMemory final : public VirtualMemory {
public:
    void* commit(std::size_t size) override;
    bool lock(void* address, std::size_t size) override;
    bool unlock(void* address, std::size_t size) override;
    bool decommit(void* address, std::size_t size) override;
    bool release(void* address) override;
    bool isBadRead(const void* address, std::size_t size) override;
    bool isBadWrite(void* address, std::size_t size) override;
    bool isBadString(const char* address, std::size_t max) override;

private:
    std::mutex m_mutex;
    std::map<void*, std::size_t> m_blocks; // munmap needs the length commit() was given
};

} // namespace platform::linux
