// Caption and picture placement on the grid.

#include "controls/ggcommand/Placement.h"

#include <gtest/gtest.h>

using namespace ggcommand;

TEST(Placement, CaptionGridCells) {
    const Extent face{100, 30}, text{40, 10};
    const std::pair<int, Point> expected[] = {
        {0, {1, 1}},  {1, {1, 10}},  {2, {1, 19}},  {3, {30, 1}},  {4, {30, 10}},
        {5, {30, 19}}, {6, {58, 1}}, {7, {58, 10}}, {8, {58, 19}},
    };
    for (const auto& [alignment, point] : expected)
        EXPECT_EQ(captionPosition(alignment, face, text, 0, 0), point) << "alignment " << alignment;
    EXPECT_EQ(captionPosition(4, face, text, 5, -3), (Point{35, 7}));
    EXPECT_FALSE(captionPosition(9, face, text, 0, 0));
    EXPECT_FALSE(captionPosition(-1, face, text, 0, 0));
}

TEST(Placement, NothingClampsAWideCaption) {
    EXPECT_EQ(captionPosition(8, {50, 20}, {80, 10}, 0, 0)->x, -32);
    // Half units are cut toward zero.
    EXPECT_EQ(captionPosition(4, {50, 21}, {55, 10}, 0, 0), (Point{-2, 5}));
}

TEST(Placement, PictureKeepsOneUnitOnTheRight) {
    EXPECT_EQ(picturePosition(6, {100, 30}, {16, 16}, 0, 0), (Point{83, 1}));
    EXPECT_EQ(captionPosition(6, {100, 30}, {16, 16}, 0, 0), (Point{82, 1}));
    EXPECT_EQ(picturePosition(1, {100, 30}, {16, 16}, 2, 0), (Point{3, 7}));
}

TEST(Placement, PictureExtentUsesTheFixedFactor) {
    EXPECT_EQ(himetricFromPixels(32), 847);
    EXPECT_NEAR(pictureExtent(847, 15), 32.27, 0.01);
    EXPECT_EQ(pictureExtent(847, 0), 0);
}
