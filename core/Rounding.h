#pragma once
// Fractions become whole numbers in one way throughout the program: to the nearest whole number,
// halves to the even neighbour (banker's rounding), so that block counts, sizes and figures agree
// wherever they are computed and no bias builds up over many roundings.

#include <cstdint>

namespace core {

/// `value` rounded to the nearest whole number, ties to even (2.5 -> 2, 3.5 -> 4, -2.5 -> -2).
std::int64_t roundHalfEven(double value);

} // namespace core
