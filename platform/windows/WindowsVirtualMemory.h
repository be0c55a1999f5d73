#pragma once
// Process memory on Windows: VirtualAlloc, VirtualLock, VirtualUnlock and VirtualFree for blocks, and
// range probes built on VirtualQuery, which reads the address space's map instead of touching the
// memory, so a probe can never fault the process (IsBadReadPtr could, on a guard page).

#include "platform/VirtualMemory.h"

namespace platform::windows {

class WindowsVirtualMemory final : public VirtualMemory {
public:
    void* commit(std::size_t size) override;
    bool lock(void* address, std::size_t size) override;
    bool unlock(void* address, std::size_t size) override;
    bool decommit(void* address, std::size_t size) override;
    bool release(void* address) override;
    bool isBadRead(const void* address, std::size_t size) override;
    bool isBadWrite(void* address, std::size_t size) override;
    bool isBadString(const char* address, std::size_t max) override;
};

} // namespace platform::windows
