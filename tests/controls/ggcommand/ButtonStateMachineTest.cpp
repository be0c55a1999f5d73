// The button's behaviour the widget tests do not reach: buttons other than the left one.

#include "controls/ggcommand/ButtonStateMachine.h"

#include <gtest/gtest.h>

using namespace ggcommand;

namespace {

std::vector<Step::Kind> eventsOnly(const std::vector<Step>& steps) {
    std::vector<Step::Kind> out;
    for (const auto& step : steps)
        if (step.isEvent())
            out.push_back(step.kind);
    return out;
}

} // namespace

TEST(ButtonStateMachine, OtherButtonsOnlyReport) {
    const MouseArgs left{1, 0, 10, 5}, right{2, 0, 10, 5};
    ButtonStateMachine machine;
    const BehaviourOptions options;
    machine.move(left, true, options);
    EXPECT_EQ(eventsOnly(machine.press(right, options)), (std::vector<Step::Kind>{Step::MouseDown}));
    EXPECT_EQ(eventsOnly(machine.release(right, options)), (std::vector<Step::Kind>{Step::MouseUp}));
    // A left release without a left press raises no Click either.
    EXPECT_EQ(eventsOnly(machine.release(left, options)), (std::vector<Step::Kind>{Step::MouseUp}));
}
