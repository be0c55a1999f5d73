#include "controls/ggcommand/OleColor.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace ggcommand {

Rgb rgbFromWord(OleColor word) {
    return {static_cast<std::uint8_t>(word & 0xFF), static_cast<std::uint8_t>((word >> 8) & 0xFF),
            static_cast<std::uint8_t>((word >> 16) & 0xFF)};
}

SystemColors SystemColors::classic() {
    // The classic (pre-theme) scheme of the platform, index by index.
    return SystemColors({{
        {212, 208, 200}, // 0 scroll bar
        {58, 110, 165},  // 1 desktop
        {10, 36, 106},   // 2 active caption
        {128, 128, 128}, // 3 inactive caption
        {212, 208, 200}, // 4 menu
        {255, 255, 255}, // 5 window
        {0, 0, 0},       // 6 window frame
        {0, 0, 0},       // 7 menu text
        {0, 0, 0},       // 8 window text
        {255, 255, 255}, // 9 caption text
        {212, 208, 200}, // 10 active border
        {212, 208, 200}, // 11 inactive border
        {128, 128, 128}, // 12 application workspace
        {10, 36, 106},   // 13 highlight
        {255, 255, 255}, // 14 highlight text
        {212, 208, 200}, // 15 button face
        {128, 128, 128}, // 16 button shadow
        {128, 128, 128}, // 17 grey text
        {0, 0, 0},       // 18 button text
        {212, 208, 200}, // 19 inactive caption text
        {255, 255, 255}, // 20 button highlight
        {64, 64, 64},    // 21 3D dark shadow
        {212, 208, 200}, // 22 3D light
        {0, 0, 0},       // 23 tooltip text
        {255, 255, 225}, // 24 tooltip background
        {181, 181, 181}, // 25 (unused)
        {0, 0, 128},     // 26 hot-tracked item
        {166, 202, 240}, // 27 active caption gradient
        {192, 192, 192}, // 28 inactive caption gradient
        {49, 106, 197},  // 29 menu highlight
        {236, 233, 216}, // 30 menu bar
    }});
}

Rgb SystemColors::at(int index) const {
    if (index < 0 || index >= Count)
        return {};
    return m_colors[static_cast<std::size_t>(index)];
}

Rgb SystemColors::translate(OleColor color) const {
    if ((color & 0xFF000000u) == 0x80000000u)
        return at(static_cast<int>(color & 0x00FFFFFFu));
    return rgbFromWord(color);
}

SystemColors nativeSystemColors() {
#ifdef _WIN32
    std::array<Rgb, SystemColors::Count> colors{};
    for (int i = 0; i < SystemColors::Count; ++i)
        colors[static_cast<std::size_t>(i)] = rgbFromWord(static_cast<OleColor>(::GetSysColor(i)));
    return SystemColors(colors);
#else
    return SystemColors::classic();
#endif
}

} // namespace ggcommand
