// The saved form of a button and the design file that holds it.

#include "controls/ggcommand/DesignFile.h"
#include "controls/ggcommand/PropertyBag.h"

#include <gtest/gtest.h>

using namespace ggcommand;

namespace {

ButtonProperties defaults() {
    return ButtonProperties::defaults("GGCommand3", FontSpec{"MS Sans Serif", 8.25});
}

} // namespace

TEST(PropertyBag, DefaultsAreLeftOutAndTheRestRoundTrips) {
    EXPECT_TRUE(saveProperties(defaults(), defaults()).empty());

    ButtonProperties changed = defaults();
    changed.caption = "Wipe Cache";
    changed.captionYOffset = -3;
    changed.font.bold = true;
    changed.gradientToColor = 0x00C08040;
    changed.enabled = false;
    changed.toolTipCentered = true;
    const PropertyBag bag = saveProperties(changed, defaults());
    EXPECT_EQ(bag.entries().size(), 5u); // the centred tip is never saved
    EXPECT_EQ(bag.read("GradientToColor"), "0x00C08040");
    EXPECT_EQ(bag.read("Enabled"), "False");

    ButtonProperties loaded = loadProperties(bag, defaults());
    EXPECT_FALSE(loaded.toolTipCentered);
    changed.toolTipCentered = false;
    EXPECT_EQ(loaded, changed);
}

TEST(PropertyBag, UnreadableValuesTakeTheDefault) {
    PropertyBag bag;
    bag.write("CaptionXOffset", "40000");     // beyond 16 bits
    bag.write("UseGradientFill", "perhaps");
    bag.write("Font", "MS Sans Serif, big");
    bag.write("ForeColor", "&HFF&");          // the classic hexadecimal form
    bag.write("BackColor", "-2147483633");    // 0x8000000F as a signed word
    bag.write("UseHoverProperties", "0");
    const ButtonProperties loaded = loadProperties(bag, defaults());
    EXPECT_EQ(loaded.captionXOffset, 0);
    EXPECT_TRUE(loaded.useGradientFill);
    EXPECT_EQ(loaded.font, defaults().font);
    EXPECT_EQ(loaded.foreColor, 0xFFu);
    EXPECT_EQ(loaded.backColor, 0x8000000Fu);
    EXPECT_FALSE(loaded.useHoverProperties);
}

TEST(DesignFile, SectionsKeysCommentsAndQuotedBlanks) {
    const std::string text = "; main window\n"
                             "[GGCommand1]\n"
                             "Caption=Show Cache\n"
                             "  CaptionAlignment = 4  \r\n"
                             "\n"
                             "# another\n"
                             "[GGCommand14]\n"
                             "Caption=\" Cache  is \\\"here\\\" \"\n"
                             "not a pair\n";
    const auto sections = parseDesign(text);
    ASSERT_EQ(sections.size(), 2u);
    EXPECT_EQ(sections[0].properties.read("CaptionAlignment"), "4");
    EXPECT_EQ(sections[1].properties.read("Caption"), " Cache  is \"here\" ");
    EXPECT_EQ(sections[1].properties.entries().size(), 1u);

    const auto again = parseDesign(formatDesign(sections));
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[1].properties.entries(), sections[1].properties.entries());
}
