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
    void* commitLarge(std::size_t size) override;
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
    bool usable(const void* address, std::size_t size, bool needWrite);
    /// How many bytes from `begin` to the end of the block of ours that holds it; 0 outside them.
    std::size_t ownSpan(std::uintptr_t begin);

    struct Block {
        std::size_t size = 0;     ///< as committed
        std::size_t capacity = 0; ///< as mapped, whole pages
    };

    std::mutex m_mutex;
    std::map<void*, Block> m_blocks;
    /// One released small block, zeroed and still resident, kept for the next commit that fits.
    void* m_spare = nullptr;
    Block m_spareBlock;
};

} // namespace platform::linux
