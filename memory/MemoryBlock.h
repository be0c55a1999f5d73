#pragma once
// MemoryBlock: one block of committed, page-locked process memory, and copies between it and other
// addresses that first probe both sides, so that a bad address copies nothing instead of faulting.
// The cache listing uses it as the buffer the cache enumeration writes each entry into.

#include <cstdint>
#include <string>

namespace platform {
class VirtualMemory;
}

namespace memory {

class MemoryBlock {
public:
    explicit MemoryBlock(platform::VirtualMemory& memory);
    /// Gives the block back (ReleaseMemory).
    ~MemoryBlock();
    MemoryBlock(const MemoryBlock&) = delete;
    MemoryBlock& operator=(const MemoryBlock&) = delete;

    /// The block's address; 0 while the instance holds none.
    std::uintptr_t Handle() const { return m_address; }
    /// Gives back any block held, then commits `lCount` bytes and locks them in physical memory.
    /// On failure the instance holds none (Handle() is 0).
    void Allocate(std::int32_t lCount);
    /// Copies `lLength` bytes from the start of the block to `hWritePointer`, only when both ranges
    /// can be used; otherwise copies nothing.
    void ReadFrom(std::uintptr_t hWritePointer, std::int32_t lLength);
    /// Copies `lLength` bytes from `hReadPointer` to the start of the block, only when both ranges
    /// can be used; otherwise copies nothing.
    void WriteTo(std::uintptr_t hReadPointer, std::int32_t lLength);
    /// The NUL-terminated single-byte text at `hStartPointer`, at most `lMax` bytes of it; empty for
    /// a pointer that cannot be read and for an empty text.
    std::string ExtractString(std::uintptr_t hStartPointer, std::int32_t lMax);
    /// Gives the block back: unlock, decommit, release, in that order. Nothing when none is held.
    void ReleaseMemory();

private:
    platform::VirtualMemory& m_memory;
    std::uintptr_t m_address = 0;
    /// The length the unlock and decommit steps are given. Never set, so it stays 0, which makes
    /// both act on the whole block; the release step is what surely gives the block back.
    std::int32_t m_length = 0;
};

} // namespace memory
