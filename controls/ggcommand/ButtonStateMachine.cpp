#include "controls/ggcommand/ButtonStateMachine.h"

#include "controls/ggcommand/Frame.h"
#include "core/Rounding.h"

namespace ggcommand {
namespace {

constexpr int LeftButton = 1;

Step event(Step::Kind kind, const MouseArgs& args = {}) {
    Step step;
    step.kind = kind;
    step.args = args;
    return step;
}

} // namespace

bool ButtonStateMachine::isInside(float x, float y, int width, int height, bool buttonUnderPointer) {
    const auto px = core::roundHalfEven(x);
    const auto py = core::roundHalfEven(y);
    return px >= 0 && py >= 0 && px < width && py < height && buttonUnderPointer;
}

void ButtonStateMachine::paintFace(std::vector<Step>& steps, bool inverse, CaptionLook look) {
    Step step = event(Step::PaintFace);
    step.inverse = inverse;
    step.look = look;
    steps.push_back(step);
    m_faceInverted = inverse;
}

void ButtonStateMachine::drawFrame(std::vector<Step>& steps, int state) {
    Step step = event(Step::DrawFrame);
    step.frameState = state;
    steps.push_back(step);
    m_lastFrame = state;
}

std::vector<Step> ButtonStateMachine::move(const MouseArgs& args, bool inside, const BehaviourOptions& options) {
    std::vector<Step> steps;
    if (!inside) {
        if (!options.dontReleaseCapture) {
            steps.push_back(event(Step::MouseExit));
            steps.push_back(event(Step::DestroyToolTip));
            m_pressed = false;
            m_captured = false;
            // Only the caption goes back to normal; a gradient inverted by a press stays so until
            // the release repaints it.
            paintFace(steps, m_faceInverted, CaptionLook::Normal);
            drawFrame(steps, FrameNormal);
            m_hover = false;
        }
    } else if (!m_hover) {
        if (options.hasToolTip)
            steps.push_back(event(Step::CreateToolTip));
        steps.push_back(event(Step::MouseEnter));
        m_captured = true;
        if (options.useHoverProperties)
            paintFace(steps, m_faceInverted, CaptionLook::Hover);
        drawFrame(steps, FrameHover);
        m_hover = true;
    }
    steps.push_back(event(Step::MouseMove, args));
    return steps;
}

std::vector<Step> ButtonStateMachine::press(const MouseArgs& args, const BehaviourOptions& options) {
    std::vector<Step> steps{event(Step::MouseDown, args)};
    if (args.button == LeftButton) {
        m_pressed = true;
        paintFace(steps, options.useGradientFill && options.gradientInverseOnPress, CaptionLook::Hover);
        drawFrame(steps, FramePressed);
        m_captured = true;
    }
    return steps;
}

std::vector<Step> ButtonStateMachine::release(const MouseArgs& args, const BehaviourOptions& options) {
    std::vector<Step> steps;
    if (args.button == LeftButton && m_pressed)
        steps.push_back(event(Step::Click));
    m_pressed = false;
    steps.push_back(event(Step::MouseUp, args));
    if (args.button == LeftButton) {
        // The pointer is still taken to be over the button, so the hover look stays.
        paintFace(steps, false, m_hover && options.useHoverProperties ? CaptionLook::Hover : CaptionLook::Normal);
        drawFrame(steps, FrameHover);
        m_captured = true;
    }
    return steps;
}

std::vector<Step> ButtonStateMachine::doubleClick() {
    return {event(Step::DblClick)};
}

std::vector<Step> ButtonStateMachine::setValue(bool value) {
    if (!value)
        return {};
    return {event(Step::Click)};
}

std::vector<Step> ButtonStateMachine::resized(const BehaviourOptions& options) {
    std::vector<Step> steps;
    paintFace(steps, false, CaptionLook::Normal);
    // The new surface has lost the frame; put back the one last drawn, as an uncovered face would.
    // The normal frame only paints the edges over in the background colour, which the fresh face
    // already shows, unless the border is always shown.
    if (m_lastFrame != FrameNormal || options.alwaysShowBorder)
        drawFrame(steps, m_lastFrame);
    return steps;
}

std::vector<Step> ButtonStateMachine::refresh(const BehaviourOptions& options) {
    std::vector<Step> steps;
    const CaptionLook look = m_pressed || (m_hover && options.useHoverProperties) ? CaptionLook::Hover
                                                                                  : CaptionLook::Normal;
    paintFace(steps, m_faceInverted, look);
    drawFrame(steps, m_lastFrame);
    return steps;
}

std::vector<Step> ButtonStateMachine::focusIn() {
    if (m_skipFocusFlash) {
        m_skipFocusFlash = false;
        return {};
    }
    std::vector<Step> steps;
    drawFrame(steps, FrameHover);
    drawFrame(steps, FrameNormal);
    return steps;
}

std::vector<Step> ButtonStateMachine::focusOut() {
    std::vector<Step> steps;
    drawFrame(steps, FrameNormal);
    return steps;
}

} // namespace ggcommand
