#pragma once
// The Gutmann method's 35 passes, defined once for the free-space wipe and the secure file delete.
// Each pass writes three blocks, each block filled with a single value: passes 1-4 and 32-35 draw
// their three values at random, passes 5-31 take them from the table. This file also knows how the
// free-space wipe turns a value into the 16-bit text form it writes.

#include "wipe/PatternRandom.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace wipe {

class Gutmann {
public:
    static constexpr int PassCount = 35;
    using Values = std::array<std::uint8_t, 3>;

    /// Whether pass `pass` (1..35) draws its values at random.
    static bool isRandom(int pass);
    /// The three fill values of pass `pass`: the table's for passes 5-31, three draws from `random`
    /// (each uniform [0, 1) x 255, rounded half to even) for the random passes.
    static Values values(int pass, PatternRandom& random);

    /// The UTF-16 code unit of the character whose ANSI (Windows-1252) code is `code`.
    static std::uint16_t ansiToUtf16(std::uint8_t code);
    /// A free-space block: `chars` characters of ANSI code `value` in their 16-bit little-endian
    /// form, so 2 x `chars` bytes.
    static std::vector<std::uint8_t> wideBlock(std::uint8_t value, std::size_t chars);
};

} // namespace wipe
