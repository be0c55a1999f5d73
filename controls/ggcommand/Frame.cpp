#include "controls/ggcommand/Frame.h"

namespace ggcommand {

FrameColors frameColors(int state, bool alwaysShowBorder, OleColor backColor) {
    constexpr OleColor white = 0xFFFFFF;
    switch (state) {
    case FrameHover:
        return {white, syscolor::ButtonShadow};
    case FramePressed:
        return {syscolor::ButtonShadow, white};
    default:
        if (alwaysShowBorder)
            return {white, syscolor::ButtonShadow};
        return {backColor, backColor};
    }
}

std::optional<WindowEdge> windowEdge(int border3DStyle) {
    switch (border3DStyle) {
    case 1:
        return WindowEdge{.clientEdge = true};
    case 2:
        return WindowEdge{.modalFrame = true};
    case 3:
        return WindowEdge{.staticEdge = true};
    case 4:
        return WindowEdge{.clientEdge = true, .modalFrame = true};
    case 0:
        return WindowEdge{};
    default:
        return std::nullopt;
    }
}

} // namespace ggcommand
