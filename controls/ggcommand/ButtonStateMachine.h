#pragma once
// The button's behaviour without any painting: what happens, in which order, when the pointer
// moves, presses, releases or double-clicks, when the button gains or loses the focus, and when a
// program sets its value. Each input returns the steps to carry out (events to raise, tooltip to
// create or destroy, face and frame to paint), so the order the holding window sees is decided
// here and can be checked without a screen.
//
// The button holds the mouse capture from the moment the pointer enters it, so that it sees the
// pointer leave; a pointer that leaves ends the hover (and any press) unless the program asked for
// the capture to be kept.

#include <vector>

namespace ggcommand {

/// Mouse event arguments as the holding window sees them: the buttons (1 left, 2 right, 4 middle),
/// the modifier keys (1 shift, 2 control, 4 alt) and the position in face units.
struct MouseArgs {
    int button = 0;
    int shift = 0;
    float x = 0;
    float y = 0;
    friend bool operator==(const MouseArgs&, const MouseArgs&) = default;
};

/// The caption's look on a face paint: its own colour and boldness, or the hover colour and
/// boldness (also used while pressed).
enum class CaptionLook { Normal, Hover };

struct Step {
    /// The seven events carry their numbering (1 Click ... 7 MouseUp); the rest are actions.
    enum Kind {
        Click = 1,
        DblClick = 2,
        MouseEnter = 3,
        MouseExit = 4,
        MouseDown = 5,
        MouseMove = 6,
        MouseUp = 7,
        CreateToolTip,
        DestroyToolTip,
        PaintFace,
        DrawFrame,
    };
    Kind kind = Click;
    MouseArgs args;        // MouseDown, MouseMove, MouseUp
    bool inverse = false;  // PaintFace: gradient colours swapped
    CaptionLook look = CaptionLook::Normal; // PaintFace
    int frameState = 0;    // DrawFrame: 0 normal, 1 hover, 2 pressed

    bool isEvent() const { return kind >= Click && kind <= MouseUp; }
};

/// The properties that change the behaviour.
struct BehaviourOptions {
    bool useHoverProperties = true;
    bool useGradientFill = true;
    bool gradientInverseOnPress = true;
    bool dontReleaseCapture = false;
    bool hasToolTip = false;
    bool alwaysShowBorder = false;
};

class ButtonStateMachine {
public:
    /// Whether a pointer at (x, y) counts as over a face of `width` x `height`: the position,
    /// rounded to whole units, lies on the face and the button is the window under the pointer
    /// (a window covering the button counts as outside).
    static bool isInside(float x, float y, int width, int height, bool buttonUnderPointer);

    /// The pointer moved to `args` (over the button, or anywhere while the button holds the
    /// capture). Enters or leaves as needed, then always raises MouseMove.
    std::vector<Step> move(const MouseArgs& args, bool inside, const BehaviourOptions& options);
    /// A mouse button went down: MouseDown first; the left button presses the face.
    std::vector<Step> press(const MouseArgs& args, const BehaviourOptions& options);
    /// A mouse button came up: Click when the left button ends a press that never left the button,
    /// then MouseUp; the left button restores the hover face.
    std::vector<Step> release(const MouseArgs& args, const BehaviourOptions& options);
    /// The second press of a double click: DblClick only.
    std::vector<Step> doubleClick();
    /// A program set the value: true raises Click, false raises nothing.
    std::vector<Step> setValue(bool value);
    /// The face was resized or first shown: a fresh normal face, and the frame as last drawn. A
    /// button that always shows its border gets its frame here too, so that it is there from the
    /// first paint rather than only after the pointer or the focus has passed over it.
    std::vector<Step> resized(const BehaviourOptions& options);
    /// A property that shows on the face changed: the face again, in its current look.
    std::vector<Step> refresh(const BehaviourOptions& options);
    /// Focus gained: a short frame flash (hover, then normal), unless a skip was armed.
    std::vector<Step> focusIn();
    /// Focus lost: the frame in the normal state.
    std::vector<Step> focusOut();
    /// The next focus gain shows no flash (the focus came with a press, which paints its own frame).
    void armFocusSkip() { m_skipFocusFlash = true; }

    bool hovering() const { return m_hover; }
    bool pressed() const { return m_pressed; }
    /// Whether the button holds the mouse capture, i.e. sees moves outside itself.
    bool captured() const { return m_captured; }
    int lastFrameState() const { return m_lastFrame; }

private:
    void paintFace(std::vector<Step>& steps, bool inverse, CaptionLook look);
    void drawFrame(std::vector<Step>& steps, int state);

    bool m_hover = false;
    bool m_pressed = false;
    bool m_captured = false;
    bool m_faceInverted = false;
    int m_lastFrame = 0;
    bool m_skipFocusFlash = false;
};

} // namespace ggcommand
