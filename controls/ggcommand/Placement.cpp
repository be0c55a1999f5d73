#include "controls/ggcommand/Placement.h"

#include "core/Rounding.h"

#include <cmath>

namespace ggcommand {
namespace {

std::optional<Point> gridPosition(int alignment, Extent face, Extent item, double rightMargin, int xOffset,
                                  int yOffset) {
    if (alignment < 0 || alignment > 8)
        return std::nullopt;
    const double left = 1;
    const double centre = (face.width - item.width) / 2;
    const double right = face.width - item.width - rightMargin;
    const double top = 1;
    const double middle = (face.height - item.height) / 2;
    const double bottom = face.height - item.height - 1;
    const double columns[] = {left, centre, right};
    const double rows[] = {top, middle, bottom};
    const double x = columns[alignment / 3] + xOffset;
    const double y = rows[alignment % 3] + yOffset;
    return Point{static_cast<int>(std::trunc(x)), static_cast<int>(std::trunc(y))};
}

} // namespace

std::optional<Point> captionPosition(int alignment, Extent face, Extent text, int xOffset, int yOffset) {
    return gridPosition(alignment, face, text, 2, xOffset, yOffset);
}

std::optional<Point> picturePosition(int alignment, Extent face, Extent picture, int xOffset, int yOffset) {
    return gridPosition(alignment, face, picture, 1, xOffset, yOffset);
}

int himetricFromPixels(int pixels) {
    return static_cast<int>(core::roundHalfEven(pixels * 2540.0 / 96.0));
}

double pictureExtent(int himetric, int twipsPerPixel) {
    if (twipsPerPixel <= 0)
        return 0;
    return static_cast<double>(himetric) / twipsPerPixel / 1.75;
}

} // namespace ggcommand
