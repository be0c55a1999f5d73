#pragma once
// Everything a button's design sets: caption and its placement, hover look, colours, font,
// picture, frame, tooltip, gradient, pointer and whether it is enabled. A new button, and a saved
// design that lacks a value, take the defaults given here.

#include "controls/ggcommand/FontSpec.h"
#include "controls/ggcommand/OleColor.h"

#include <cstdint>
#include <string>

namespace ggcommand {

/// Tooltip shapes and title icons.
enum ToolTipStyle { ToolTipStandard = 0, ToolTipBalloon = 1 };
enum ToolTipIcon { ToolTipNoIcon = 0, ToolTipInfo = 1, ToolTipWarning = 2, ToolTipError = 3 };

struct ButtonProperties {
    std::string caption;
    std::int32_t captionAlignment = 4;
    std::int16_t captionXOffset = 0;
    std::int16_t captionYOffset = 0;
    bool useHoverProperties = true;
    bool fontBoldOnHover = false;
    OleColor fontColorOnHover = 0xFF0000; // blue
    OleColor backColor = syscolor::ButtonFace;
    OleColor foreColor = syscolor::ButtonText;
    FontSpec font;
    std::string picture; // path of the image ("" for none)
    std::int32_t pictureAlignment = 1;
    std::int16_t pictureXOffset = 0;
    std::int16_t pictureYOffset = 0;
    bool alwaysShowBorder = false;
    std::string toolTip;
    std::string toolTipTitle;
    OleColor toolTipBackColor = syscolor::InfoBackground;
    OleColor toolTipForeColor = syscolor::InfoText;
    std::int32_t toolTipIcon = ToolTipNoIcon;
    std::int32_t toolTipStyle = ToolTipStandard;
    std::int32_t border3DStyle = 0;
    std::int32_t gradientOrientation = 0;
    bool useGradientFill = true;
    OleColor gradientFromColor = syscolor::ButtonHighlight;
    OleColor gradientToColor = syscolor::ButtonShadow;
    bool gradientInverseOnPress = true;
    std::int16_t mousePointer = 0;
    bool enabled = true;
    /// Centre the tip below the button; never saved, so false after every load.
    bool toolTipCentered = false;

    friend bool operator==(const ButtonProperties&, const ButtonProperties&) = default;

    /// The defaults of a button named `controlName` (its caption) in a window whose font is
    /// `windowFont`.
    static ButtonProperties defaults(const std::string& controlName, const FontSpec& windowFont);
};

} // namespace ggcommand
