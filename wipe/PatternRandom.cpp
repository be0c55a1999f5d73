#include "wipe/PatternRandom.h"

#include "core/Rounding.h"

#include <chrono>
#include <cstring>
#include <ctime>

namespace wipe {

PatternRandom::PatternRandom() : m_state(0x50000) {
    reseed(secondsSinceMidnight());
}

void PatternRandom::reseed(double seed) {
    // The seed's high 32 bits carry its sign, exponent and leading digits: fold them into the
    // middle 16 bits of the state, the way the classic BASIC generator does.
    std::uint64_t bits = 0;
    std::memcpy(&bits, &seed, sizeof bits);
    const auto high = static_cast<std::uint32_t>(bits >> 32);
    const std::uint32_t folded = ((high & 0xFFFF) ^ (high >> 16)) << 8;
    m_state = (m_state & 0xFF00FF) | (folded & 0x00FF00) | ((folded ^ static_cast<std::uint32_t>(bits)) & 0xFF0000);
    m_state &= 0xFFFFFF;
}

double PatternRandom::next() {
    m_state = (m_state * 0x43FD43FDu + 0xC39EC3u) & 0xFFFFFF;
    return static_cast<double>(m_state) / 16777216.0;
}

std::uint8_t PatternRandom::nextByte() {
    return static_cast<std::uint8_t>(core::roundHalfEven(next() * 255.0));
}

double PatternRandom::secondsSinceMidnight() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t t = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &t);
#else
    localtime_r(&t, &local);
#endif
    const double fraction =
        std::chrono::duration<double>(now - std::chrono::system_clock::from_time_t(t)).count();
    return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec + fraction;
}

} // namespace wipe
