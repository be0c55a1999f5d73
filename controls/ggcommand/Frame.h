#pragma once
// The thin frame drawn inside the face (none, raised on hover, sunken while pressed) and the
// window edge around the face chosen by the edge style.

#include "controls/ggcommand/OleColor.h"

#include <optional>

namespace ggcommand {

/// Frame states: the pointer is away, over the button, or pressing it.
enum FrameState { FrameNormal = 0, FrameHover = 1, FramePressed = 2 };

/// The frame's left/top and right/bottom colours.
struct FrameColors {
    OleColor topLeft = 0;
    OleColor bottomRight = 0;
    friend bool operator==(const FrameColors&, const FrameColors&) = default;
};

/// Colours of the frame in `state`. The normal state paints the frame over in `backColor`
/// (so it vanishes) unless `alwaysShowBorder`, which keeps the raised look.
FrameColors frameColors(int state, bool alwaysShowBorder, OleColor backColor);

/// The window edge kinds an edge style is made of.
struct WindowEdge {
    bool clientEdge = false;     // two-unit sunken edge
    bool modalFrame = false;     // three-unit raised frame
    bool staticEdge = false;     // one-unit sunken edge
    /// Units taken from each side of the button before the face starts.
    int width() const { return (modalFrame ? 3 : 0) + (clientEdge ? 2 : 0) + (staticEdge ? 1 : 0); }
};

/// The edge for `border3DStyle` 0-4 (none, client edge, modal frame, static edge, client edge
/// with modal frame); empty for any other value, which leaves the edge as it was.
std::optional<WindowEdge> windowEdge(int border3DStyle);

} // namespace ggcommand
