// The button's behaviour: which events and paints follow each input, in order.

#include "controls/ggcommand/ButtonStateMachine.h"

#include <gtest/gtest.h>

using namespace ggcommand;

namespace {

const MouseArgs Left{1, 0, 10, 5};
const MouseArgs Right{2, 0, 10, 5};

std::vector<Step::Kind> kinds(const std::vector<Step>& steps) {
    std::vector<Step::Kind> out;
    for (const auto& step : steps)
        out.push_back(step.kind);
    return out;
}

std::vector<Step::Kind> eventsOnly(const std::vector<Step>& steps) {
    std::vector<Step::Kind> out;
    for (const auto& step : steps)
        if (step.isEvent())
            out.push_back(step.kind);
    return out;
}

} // namespace

// What entering shows is checked on the widget; these are the cases it does not reach.
TEST(ButtonStateMachine, EnteringWithoutTipTextOrHoverLookOnlyReportsAndFrames) {
    ButtonStateMachine machine;
    BehaviourOptions options;
    options.useHoverProperties = false;
    EXPECT_EQ(kinds(machine.move(Left, true, options)),
              (std::vector<Step::Kind>{Step::MouseEnter, Step::DrawFrame, Step::MouseMove}));
    EXPECT_EQ(kinds(machine.move(Left, true, options)), (std::vector<Step::Kind>{Step::MouseMove}));
}

TEST(ButtonStateMachine, OtherButtonsOnlyReport) {
    ButtonStateMachine machine;
    const BehaviourOptions options;
    machine.move(Left, true, options);
    EXPECT_EQ(kinds(machine.press(Right, options)), (std::vector<Step::Kind>{Step::MouseDown}));
    EXPECT_EQ(kinds(machine.release(Right, options)), (std::vector<Step::Kind>{Step::MouseUp}));
    // A left release without a left press raises no Click either.
    EXPECT_EQ(eventsOnly(machine.release(Left, options)), (std::vector<Step::Kind>{Step::MouseUp}));
}

TEST(ButtonStateMachine, FocusFlashesUnlessSkipped) {
    ButtonStateMachine machine;
    const auto flash = machine.focusIn();
    ASSERT_EQ(flash.size(), 2u);
    EXPECT_EQ(flash[0].frameState, 1);
    EXPECT_EQ(flash[1].frameState, 0);
    machine.armFocusSkip();
    EXPECT_TRUE(machine.focusIn().empty());
    EXPECT_EQ(machine.focusIn().size(), 2u); // the skip is used up
    EXPECT_EQ(machine.focusOut()[0].frameState, 0);
}

TEST(ButtonStateMachine, ResizeRepaintsNormallyAndKeepsTheLastFrame) {
    ButtonStateMachine machine;
    EXPECT_EQ(kinds(machine.resized({})), (std::vector<Step::Kind>{Step::PaintFace}));
    BehaviourOptions bordered;
    bordered.alwaysShowBorder = true;
    const auto first = machine.resized(bordered);
    ASSERT_EQ(kinds(first), (std::vector<Step::Kind>{Step::PaintFace, Step::DrawFrame}));
    EXPECT_EQ(first[1].frameState, 0); // the normal frame, which shows with the border kept
    machine.move(Left, true, {});
    const auto steps = machine.resized({});
    ASSERT_EQ(kinds(steps), (std::vector<Step::Kind>{Step::PaintFace, Step::DrawFrame}));
    EXPECT_EQ(steps[1].frameState, 1);
}

TEST(ButtonStateMachine, InsideMeansOnTheFaceAndUncovered) {
    // Rounded to whole pixels first: -0.5 is 0, 99.5 is 100. A widget on top is the window's to say.
    EXPECT_TRUE(ButtonStateMachine::isInside(99.4f, 29.4f, 100, 30, true));
    EXPECT_FALSE(ButtonStateMachine::isInside(99.5f, 10, 100, 30, true));
    EXPECT_TRUE(ButtonStateMachine::isInside(-0.5f, 10, 100, 30, true));
    EXPECT_FALSE(ButtonStateMachine::isInside(-0.6f, 10, 100, 30, true));
}
