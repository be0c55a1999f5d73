#pragma once
// The random numbers of the Gutmann method's random passes: a small 24-bit generator that is
// reseeded from a number (the free-space wipe reseeds it with the sine or the tangent of the time of
// day) and hands out values in [0, 1). It makes no claim to unpredictability; a random pass fills
// each block with a single value drawn from it.

#include <cstdint>

namespace wipe {

class PatternRandom {
public:
    /// A generator seeded from the time of day.
    PatternRandom();
    /// A generator in a known state, for reproducible runs.
    explicit PatternRandom(std::uint32_t state) : m_state(state & 0xFFFFFF) {}

    /// Mixes `seed` into the generator's state.
    void reseed(double seed);
    /// The next value, uniform in [0, 1).
    double next();
    /// next() x 255 rounded half to even: a byte value 0 to 255.
    std::uint8_t nextByte();

    /// Seconds since local midnight, with their fraction.
    static double secondsSinceMidnight();

private:
    std::uint32_t m_state;
};

} // namespace wipe
