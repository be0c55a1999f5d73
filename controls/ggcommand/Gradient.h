#pragma once
// The face's colour gradient as a list of one-unit lines, each with its own colour. The colours
// step linearly from the first line to the last; the running channel values are kept as
// fractions and rounded for each line, so long faces get an even ramp.

#include "controls/ggcommand/OleColor.h"

#include <vector>

namespace ggcommand {

struct GradientLine {
    int x1 = 0;
    int y1 = 0;
    int x2 = 0;
    int y2 = 0;
    Rgb color;
    friend bool operator==(const GradientLine&, const GradientLine&) = default;
};

/// Colour changes from top to bottom (horizontal lines) / from left to right (vertical lines).
inline constexpr int GradientTopToBottom = 0;
inline constexpr int GradientLeftToRight = 1;

/// The lines of a gradient over a face of `width` x `height` units, from `from` to `to` (swapped
/// when `inverse`). Orientation 1: vertical lines x = 0 .. width inclusive; orientation 0:
/// horizontal lines y = 0 .. height inclusive. Any other orientation, or a zero extent along the
/// colour's direction, gives no lines at all.
std::vector<GradientLine> gradientLines(Rgb from, Rgb to, bool inverse, int orientation, int width, int height);

} // namespace ggcommand
