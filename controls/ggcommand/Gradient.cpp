#include "controls/ggcommand/Gradient.h"

#include "core/Rounding.h"

#include <algorithm>
#include <utility>

namespace ggcommand {
namespace {

std::uint8_t channel(double value) {
    // Accumulated steps can overshoot the end colour by a hair; keep the byte in range.
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(core::roundHalfEven(value), 0, 255));
}

} // namespace

std::vector<GradientLine> gradientLines(Rgb from, Rgb to, bool inverse, int orientation, int width, int height) {
    if (orientation != GradientTopToBottom && orientation != GradientLeftToRight)
        return {};
    if (inverse)
        std::swap(from, to);
    const bool vertical = orientation == GradientLeftToRight;
    const int n = vertical ? width : height;
    if (n <= 0)
        return {}; // the step would be a division by zero: this paint draws nothing

    double r = from.red, g = from.green, b = from.blue;
    const double dr = (to.red - r) / n, dg = (to.green - g) / n, db = (to.blue - b) / n;
    std::vector<GradientLine> lines;
    lines.reserve(static_cast<std::size_t>(n) + 1);
    for (int i = 0; i <= n; ++i) {
        const Rgb color{channel(r), channel(g), channel(b)};
        if (vertical)
            lines.push_back({i, 0, i, height, color});
        else
            lines.push_back({0, i, width, i, color});
        r += dr;
        g += dg;
        b += db;
    }
    return lines;
}

} // namespace ggcommand
