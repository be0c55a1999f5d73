#pragma once
// The desktop program's main window as the GUI tests drive it: the native platform (already in the
// scratch environment), the tool windows and TaviMain, shown and exposed; torn down in reverse.

#include "app/TaviMain.h"
#include "app/WindowSet.h"
#include "platform/Platform.h"

#include <QTest>

#include <memory>

namespace testsupport {

struct MainWindowUnderTest {
    std::unique_ptr<platform::Platform> platform = platform::createNative();
    app::WindowSet windows{*platform};
    app::TaviMain main{*platform, windows};

    MainWindowUnderTest() {
        main.show();
        (void)QTest::qWaitForWindowExposed(&main);
    }
};

} // namespace testsupport
