#include "core/Rounding.h"

#include <cmath>

namespace core {

std::int64_t roundHalfEven(double value) {
    // nearbyint follows the current rounding mode, which is round-to-nearest-even unless someone
    // changed it; do the arithmetic by hand so that nothing global matters.
    double whole = std::floor(value);
    double fraction = value - whole;
    if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0))
        whole += 1.0;
    return static_cast<std::int64_t>(whole);
}

} // namespace core
