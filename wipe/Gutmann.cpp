#include "wipe/Gutmann.h"

#include <algorithm>
#include <cstring>

namespace wipe {
namespace {

// Passes 5 to 31; passes 12 to 25 are 0x22 ... 0xFF, filled in by values().
constexpr std::array<Gutmann::Values, 27> Table = {{
    {0x55, 0x55, 0x55}, {0xAA, 0xAA, 0xAA},                     // 5, 6
    {0x92, 0x49, 0x24}, {0x49, 0x24, 0x92}, {0x24, 0x92, 0x49}, // 7-9
    {0x00, 0x00, 0x00}, {0x11, 0x11, 0x11},                     // 10, 11
    {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {},     // 12-25
    {0x92, 0x49, 0x24}, {0x49, 0x24, 0x92}, {0x24, 0x92, 0x49}, // 26-28
    {0x6D, 0xB6, 0xDB}, {0xB6, 0xDB, 0x6D}, {0xDB, 0x6D, 0xB6}, // 29-31
}};

// Windows-1252 0x80-0x9F; the five codes it leaves undefined map to themselves.
constexpr std::array<std::uint16_t, 32> Cp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

bool Gutmann::isRandom(int pass) {
    return pass <= 4 || pass >= 32;
}

Gutmann::Values Gutmann::values(int pass, PatternRandom& random) {
    if (isRandom(pass)) {
        Values v{};
        for (auto& value : v)
            value = random.nextByte();
        return v;
    }
    if (pass >= 12 && pass <= 25) {
        const auto value = static_cast<std::uint8_t>((pass - 10) * 0x11);
        return {value, value, value};
    }
    return Table[static_cast<std::size_t>(pass - 5)];
}

std::uint16_t Gutmann::ansiToUtf16(std::uint8_t code) {
    return code >= 0x80 && code <= 0x9F ? Cp1252High[code - 0x80] : code;
}

std::vector<std::uint8_t> Gutmann::wideBlock(std::uint8_t value, std::size_t chars) {
    const std::uint16_t unit = ansiToUtf16(value);
    std::vector<std::uint8_t> block(2 * chars);
    if (block.empty())
        return block;
    block[0] = static_cast<std::uint8_t>(unit & 0xFF);
    block[1] = static_cast<std::uint8_t>(unit >> 8);
    // Doubling what is filled already: a block of megabytes in a few dozen copies.
    for (std::size_t filled = 2; filled < block.size(); filled *= 2)
        std::memcpy(block.data() + filled, block.data(), std::min(filled, block.size() - filled));
    return block;
}

} // namespace wipe
