#include "memory/BlankString.h"

#include "platform/VirtualMemory.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace memory {

void fillBlanks(char16_t* to, std::size_t characters) {
    char16_t* const end = to + characters;
    // Single blanks up to the first 16-byte boundary, whole 16-byte stores from there.
    while (to < end && reinterpret_cast<std::uintptr_t>(to) % 16 != 0)
        *to++ = u' ';
#if defined(__SSE2__)
    // Non-temporal stores: a string is far larger than the caches, so writing past them spares
    // reading every line in before it is overwritten.
    const __m128i blanks = _mm_set1_epi16(0x0020);
    for (; end - to >= 8; to += 8)
        _mm_stream_si128(reinterpret_cast<__m128i*>(to), blanks);
    _mm_sfence();
#else
    const std::uint64_t blanks = 0x0020002000200020ull;
    for (; end - to >= 4; to += 4)
        std::memcpy(to, &blanks, sizeof blanks);
#endif
    while (to < end)
        *to++ = u' ';
}

BlankString::BlankString(platform::VirtualMemory& memory, std::size_t characters) : m_memory(&memory) {
    if (characters == 0)
        return;
    if (characters > SIZE_MAX / sizeof(char16_t))
        throw std::bad_alloc();
    m_data = static_cast<char16_t*>(memory.commitLarge(characters * sizeof(char16_t)));
    if (!m_data)
        throw std::bad_alloc();
    m_size = characters;
    fillBlanks(m_data, m_size);
}

BlankString::BlankString(BlankString&& other) noexcept
    : m_memory(other.m_memory), m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)) {}

BlankString& BlankString::operator=(BlankString&& other) noexcept {
    if (this != &other) {
        BlankString old(std::move(*this));
        m_memory = other.m_memory;
        m_data = std::exchange(other.m_data, nullptr);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

BlankString::~BlankString() {
    if (m_data)
        m_memory->release(m_data);
}

} // namespace memory
