// Caption and picture placement on the grid.

#include "controls/ggcommand/Placement.h"

#include <gtest/gtest.h>

using namespace ggcommand;

// One cell of each row and column of the grid: left, centre and right, top, middle and bottom.
TEST(Placement, CaptionGridCells) {
    const Extent face{100, 30}, text{40, 10};
    EXPECT_EQ(captionPosition(0, face, text, 0, 0), (Point{1, 1}));
    EXPECT_EQ(captionPosition(4, face, text, 5, -3), (Point{35, 7}));
    EXPECT_EQ(captionPosition(8, face, text, 0, 0), (Point{58, 19}));
    EXPECT_FALSE(captionPosition(9, face, text, 0, 0));
    EXPECT_FALSE(captionPosition(-1, face, text, 0, 0));
    // Nothing clamps a wide caption, and half units are cut toward zero.
    EXPECT_EQ(captionPosition(8, {50, 20}, {80, 10}, 0, 0)->x, -32);
    EXPECT_EQ(captionPosition(4, {50, 21}, {55, 10}, 0, 0), (Point{-2, 5}));
}

TEST(Placement, PictureKeepsOneUnitOnTheRight) {
    EXPECT_EQ(picturePosition(6, {100, 30}, {16, 16}, 0, 0), (Point{83, 1}));
    EXPECT_EQ(captionPosition(6, {100, 30}, {16, 16}, 0, 0), (Point{82, 1}));
    EXPECT_EQ(picturePosition(1, {100, 30}, {16, 16}, 2, 0), (Point{3, 7}));
}
