#pragma once
// Blocks of committed process memory that can be locked in physical memory, range probes that tell
// whether memory can be read or written without faulting the process, and this process's standing
// when the system runs out of memory.

#include <cstddef>

namespace platform {

class VirtualMemory {
public:
    virtual ~VirtualMemory() = default;

    /// Commits a zero-filled read-write block of `size` bytes; null on failure.
    virtual void* commit(std::size_t size) = 0;
    /// The same, for a large block that is written whole at once: where the system can, in large
    /// pages, so that filling it costs one page fault in hundreds. Given back by release().
    virtual void* commitLarge(std::size_t size) { return commit(size); }
    /// Keeps the pages of the range in physical memory.
    virtual bool lock(void* address, std::size_t size) = 0;
    virtual bool unlock(void* address, std::size_t size) = 0;
    /// Gives the pages of the range back to the system while keeping the addresses reserved
    /// (MEM_DECOMMIT); a zero size at a block's start means the whole block. Decommitted pages are
    /// no longer locked.
    virtual bool decommit(void* address, std::size_t size) = 0;
    /// Gives back a block obtained from commit(), whole.
    virtual bool release(void* address) = 0;
    /// True when some byte of the range cannot be read (IsBadReadPtr). A zero size is never bad.
    /// Never faults, whatever the address.
    virtual bool isBadRead(const void* address, std::size_t size) = 0;
    /// True when some byte of the range cannot be written (IsBadWritePtr). A zero size is never bad.
    /// Never faults, whatever the address.
    virtual bool isBadWrite(void* address, std::size_t size) = 0;
    /// True when the text at `address` cannot be read up to its NUL or `max` bytes (IsBadStringPtrA).
    /// Never faults, whatever the address.
    virtual bool isBadString(const char* address, std::size_t max) = 0;

    /// The largest out-of-memory score: the process the system ends first when memory runs out.
    static constexpr int FirstToGo = 1000;
    /// This process's out-of-memory score, from -1000 (never ended for lack of memory) to 1000
    /// (ended first). Systems that refuse an allocation instead of ending a process have none
    /// and say 0.
    virtual int outOfMemoryScore() { return 0; }
    /// Sets this process's out-of-memory score; false when the system refused. Where there is no
    /// such score, nothing to do.
    virtual bool setOutOfMemoryScore(int /*score*/) { return true; }
};

} // namespace platform
