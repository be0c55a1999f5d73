#include "memory/MemoryBlock.h"

#include "platform/VirtualMemory.h"

#include <cstring>

namespace memory {
namespace {

void* pointer(std::uintptr_t address) {
    return reinterpret_cast<void*>(address);
}

} // namespace

MemoryBlock::MemoryBlock(platform::VirtualMemory& memory) : m_memory(memory) {}

MemoryBlock::~MemoryBlock() {
    ReleaseMemory();
}

void MemoryBlock::Allocate(std::int32_t lCount) {
    ReleaseMemory();
    const std::size_t count = lCount > 0 ? static_cast<std::size_t>(lCount) : 0;
    m_address = reinterpret_cast<std::uintptr_t>(m_memory.commit(count));
    // A failed lock (beyond the locked-memory limit) still leaves a usable block.
    m_memory.lock(pointer(m_address), count);
}

void MemoryBlock::ReadFrom(std::uintptr_t hWritePointer, std::int32_t lLength) {
    if (lLength < 0)
        return;
    const auto length = static_cast<std::size_t>(lLength);
    if (m_memory.isBadWrite(pointer(hWritePointer), length) || m_memory.isBadRead(pointer(Handle()), length))
        return;
    if (length > 0)
        std::memmove(pointer(hWritePointer), pointer(Handle()), length);
}

void MemoryBlock::WriteTo(std::uintptr_t hReadPointer, std::int32_t lLength) {
    if (lLength < 0)
        return;
    const auto length = static_cast<std::size_t>(lLength);
    if (m_memory.isBadRead(pointer(hReadPointer), length) || m_memory.isBadWrite(pointer(Handle()), length))
        return;
    if (length > 0)
        std::memmove(pointer(Handle()), pointer(hReadPointer), length);
}

std::string MemoryBlock::ExtractString(std::uintptr_t hStartPointer, std::int32_t lMax) {
    if (lMax <= 0 || hStartPointer == 0)
        return {};
    const auto max = static_cast<std::size_t>(lMax);
    const char* text = static_cast<const char*>(pointer(hStartPointer));
    if (m_memory.isBadString(text, max))
        return {};
    // The probe vouched for the bytes up to the NUL or `max`, whichever comes first.
    return std::string(text, ::strnlen(text, max));
}

void MemoryBlock::ReleaseMemory() {
    if (m_address == 0)
        return;
    m_memory.unlock(pointer(m_address), static_cast<std::size_t>(m_length));
    m_memory.decommit(pointer(m_address), static_cast<std::size_t>(m_length));
    m_memory.release(pointer(m_address));
    m_address = 0;
}

} // namespace memory
