#pragma once
// Where the caption and the picture sit on the face: a three-by-three grid of cells (0 top left,
// 1 middle left, 2 bottom left, 3 top centre, 4 centre, 5 bottom centre, 6 top right, 7 middle
// right, 8 bottom right) plus free offsets. Nothing is clamped: a caption wider than the face
// simply starts left of it.

#include <optional>

namespace ggcommand {

struct Point {
    int x = 0;
    int y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Extent {
    double width = 0;
    double height = 0;
};

/// The caption's top-left corner for `alignment` on a face of `face` units with text of `text`
/// units, offsets added, integer part taken. Empty for an alignment outside 0-8 (the caller keeps
/// the previous position).
std::optional<Point> captionPosition(int alignment, Extent face, Extent text, int xOffset, int yOffset);

/// The same for the picture, whose right column keeps one unit from the edge where the caption
/// keeps two.
std::optional<Point> picturePosition(int alignment, Extent face, Extent picture, int xOffset, int yOffset);

/// A picture's stored size, in hundredths of a millimetre, for an image of `pixels` pixels at the
/// screen's 96 pixels per inch.
int himetricFromPixels(int pixels);

/// The picture extent used for placing it: its stored size in hundredths of a millimetre divided
/// by the screen's twips per pixel and by 1.75 (a fixed stand-in for 2540/1440, kept as the
/// layouts were made with it).
double pictureExtent(int himetric, int twipsPerPixel);

} // namespace ggcommand
