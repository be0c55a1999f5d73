// The gradient's guards and the colour words it is made from.

#include "controls/ggcommand/Gradient.h"

#include <gtest/gtest.h>

using namespace ggcommand;

TEST(Gradient, ImpossibleOrientationsAndEmptyExtentsDrawNothing) {
    for (int none : {2, -1}) // no such orientation
        EXPECT_TRUE(gradientLines({0, 0, 0}, {255, 255, 255}, false, none, 30, 10).empty());
    // A zero extent along the colour's direction draws nothing (the step would divide by zero).
    EXPECT_TRUE(gradientLines({0, 0, 0}, {255, 255, 255}, false, GradientTopToBottom, 30, 0).empty());
}

TEST(OleColor, TranslatesSystemReferencesAndSplitsPlainWords) {
    const SystemColors colors = SystemColors::classic();
    EXPECT_EQ(colors.translate(0xFF0000), (Rgb{0, 0, 255})); // 0x00BBGGRR: blue
    EXPECT_EQ(colors.translate(syscolor::ButtonFace), colors.at(15));
    EXPECT_EQ(colors.translate(0x80000040), (Rgb{0, 0, 0})); // no such system colour
}
