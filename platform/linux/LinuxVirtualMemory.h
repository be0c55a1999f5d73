#pragma once
// Virtual memory on Linux: mmap blocks and mlock, range probes that read through the kernel
// (process_vm_readv) so that a bad address is reported instead of touched, and the out-of-memory
// score in /proc/self/oom_score_adj.

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
    int outOfMemoryScore() override;
    bool setOutOfMemoryScore(int score) override;

private:
    std::mutex m_mutex;
    std::map<void*, std::size_t> m_blocks; // munmap needs the length commit() was given
};

} // namespace platform::linux
