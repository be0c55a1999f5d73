#pragma once
// One string of the memory wipe: a number of 16-bit blanks (the bytes 0x20 0x00) in a block of
// memory of its own, committed from the system, written in full when it is made and handed back
// whole when it goes. Written front to back with wide stores that go straight to memory, so that a
// string is made at the pace the memory takes writes, and every page of it is really taken.

#include <cstddef>

namespace platform {
class VirtualMemory;
}

namespace memory {

class BlankString {
public:
    BlankString() = default;
    /// `characters` blanks; throws std::bad_alloc when the system gives no memory for them.
    BlankString(platform::VirtualMemory& memory, std::size_t characters);
    BlankString(BlankString&& other) noexcept;
    BlankString& operator=(BlankString&& other) noexcept;
    ~BlankString();

    const char16_t* data() const { return m_data; }
    std::size_t size() const { return m_size; }

private:
    platform::VirtualMemory* m_memory = nullptr;
    char16_t* m_data = nullptr;
    std::size_t m_size = 0;
};

/// Writes `characters` blanks from `to` on.
void fillBlanks(char16_t* to, std::size_t characters);

} // namespace memory
