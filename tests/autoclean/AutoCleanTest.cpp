// AutoClean's transitions, the process check and the watch step, with a real child process started
// under a watched browser name. The check sees only the children the test started: a browser the
// machine happens to run must not decide the outcome.

#include "autoclean/AutoCleanState.h"
#include "autoclean/CheckProcess.h"
#include "autoclean/WatchStep.h"
#include "platform/Platform.h"
#include "tests/support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace autoclean;

namespace {

/// The real process list narrowed to the processes in `own`.
struct OwnChildren final : platform::Processes {
    platform::Processes& real;
    std::vector<long> own;
    explicit OwnChildren(platform::Processes& real) : real(real) {}
    std::vector<long> ids() override {
        std::vector<long> seen = real.ids();
        std::erase_if(seen, [&](long id) { return std::find(own.begin(), own.end(), id) == own.end(); });
        return seen;
    }
    std::optional<std::string> programName(long id) override { return real.programName(id); }
};

} // namespace

TEST(AutoCleanState, ACleanRearmsTheWatchEvenWhenSwitchedOffWhileWaitingForTheClose) {
    AutoCleanState s = afterCheckTick(toggled({}), false); // no browser yet: keep watching
    EXPECT_EQ(s, (AutoCleanState{OnCaption, true, false}));
    s = afterClean(afterCheckTick(s, true));
    EXPECT_EQ(s, (AutoCleanState{OnCaption, true, false}));
    s = toggled(afterCheckTick(s, true));
    EXPECT_EQ(s, (AutoCleanState{OffCaption, false, true})); // TClosed keeps running
    s = afterClean(s);
    EXPECT_EQ(s, (AutoCleanState{OffCaption, true, false})); // TCheck armed although OFF
    // The next toggle reads the caption, so it switches on again; from watching, off is off.
    EXPECT_EQ(toggled(s), (AutoCleanState{OnCaption, true, false}));
    EXPECT_EQ(toggled(toggled(s)), AutoCleanState{});
}

// Only the browsers' program files count, by name ignoring case and blanks, never the helpers
// that outlive them.
TEST(CheckProcess, FindsTheWatchedBrowsersByTheirProgramNames) {
    auto platform = platform::createNative();
    OwnChildren processes(platform->processes());
    testsupport::ChildProcess browser("iexplore.exe");
    processes.own.push_back(static_cast<long>(browser.pid()));
    EXPECT_TRUE(IsProcessRunning(processes, "  IEXPLORE.EXE "));
    browser.stop();
    EXPECT_FALSE(IsProcessRunning(processes, "iexplore.exe"));

    testsupport::ChildProcess helper("chrome_crashpad_handler"), crash("crashhelper");
    processes.own = {static_cast<long>(helper.pid()), static_cast<long>(crash.pid())};
    EXPECT_FALSE(IsProcessRunning(processes, watchedBrowsers()));
}

TEST(WatchStep, AsksForACleanOnlyOnceTheBrowserThatStartedIsGone) {
    auto platform = platform::createNative();
    OwnChildren processes(platform->processes());
    AutoCleanState s = toggled({});
    EXPECT_EQ(watchStep(s, Timer::Check, processes), Tick::Nothing);
    {
#ifdef _WIN32
        testsupport::ChildProcess browser("iexplore.exe"); // the one browser watched there
#else
        testsupport::ChildProcess browser("firefox");
#endif
        processes.own = {static_cast<long>(browser.pid())};
        EXPECT_EQ(watchStep(s, Timer::Check, processes), Tick::BrowserStarted);
        EXPECT_EQ(s, (AutoCleanState{OnCaption, false, true}));
        EXPECT_EQ(watchStep(s, Timer::Closed, processes), Tick::Nothing);
    }
    EXPECT_EQ(watchStep(s, Timer::Closed, processes), Tick::CleanDue);
    EXPECT_EQ(s, (AutoCleanState{OnCaption, false, true})); // the caller moves on after its clean
}
