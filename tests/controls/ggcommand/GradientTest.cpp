// The gradient's lines and the colour words they are made from.

#include "controls/ggcommand/Gradient.h"

#include <gtest/gtest.h>

using namespace ggcommand;

namespace {

std::vector<int> reds(const std::vector<GradientLine>& lines) {
    std::vector<int> values;
    for (const auto& line : lines)
        values.push_back(line.color.red);
    return values;
}

} // namespace

TEST(Gradient, StepsEvenlyAndRoundsHalvesToEven) {
    // 255 -> 0 over 4 lines: 191.25, 127.5 (-> 128, the even one), 63.75.
    const auto lines = gradientLines({255, 0, 0}, {0, 0, 0}, false, GradientTopToBottom, 10, 4);
    EXPECT_EQ(reds(lines), (std::vector<int>{255, 191, 128, 64, 0}));
    // 0 -> 5 over 2: the middle 2.5 goes down to 2.
    EXPECT_EQ(reds(gradientLines({0, 0, 0}, {5, 0, 0}, false, GradientTopToBottom, 10, 2)), (std::vector<int>{0, 2, 5}));
}

TEST(Gradient, OrientationDecidesTheLines) {
    const auto horizontal = gradientLines({0, 0, 0}, {255, 255, 255}, false, GradientTopToBottom, 30, 10);
    ASSERT_EQ(horizontal.size(), 11u); // y = 0 .. height inclusive
    EXPECT_EQ(horizontal[3], (GradientLine{0, 3, 30, 3, horizontal[3].color}));

    const auto vertical = gradientLines({0, 0, 0}, {255, 255, 255}, false, GradientLeftToRight, 30, 10);
    ASSERT_EQ(vertical.size(), 31u);
    EXPECT_EQ(vertical[7], (GradientLine{7, 0, 7, 10, vertical[7].color}));

    for (int none : {2, -1}) // no such orientation
        EXPECT_TRUE(gradientLines({0, 0, 0}, {255, 255, 255}, false, none, 30, 10).empty());
    // A zero extent along the colour's direction draws nothing (the step would divide by zero).
    EXPECT_TRUE(gradientLines({0, 0, 0}, {255, 255, 255}, false, GradientTopToBottom, 30, 0).empty());
    EXPECT_EQ(gradientLines({0, 0, 0}, {255, 255, 255}, false, GradientTopToBottom, 0, 5).size(), 6u);
}

TEST(OleColor, TranslatesSystemReferencesAndSplitsPlainWords) {
    const SystemColors colors = SystemColors::classic();
    EXPECT_EQ(colors.translate(0xFF0000), (Rgb{0, 0, 255})); // 0x00BBGGRR: blue
    EXPECT_EQ(colors.translate(syscolor::ButtonFace), colors.at(15));
    EXPECT_EQ(colors.translate(0x80000040), (Rgb{0, 0, 0})); // no such system colour
}
