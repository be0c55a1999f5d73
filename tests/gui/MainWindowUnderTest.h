#pragma once
// The desktop program's main window as the GUI tests drive it: the native platform (already in the
// scratch environment), the tool windows and TaviMain, shown and exposed; torn down in reverse.

#include "app/TaviMain.h"
#include "app/WindowSet.h"
#include "platform/Platform.h"

#include <QAction>
#include <QCoreApplication>
#include <QTest>
#include <QTimer>

#include <functional>
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

    /// Runs the program's event loop as main() does, calls `whileRunning` every few milliseconds
    /// until it returns true, then ends the program with `end` (by default: Exit from the tray
    /// menu). Returns the loop's exit code, or -1 when it did not end within a minute.
    int exitWhen(const std::function<bool()>& whileRunning, const std::function<void()>& end = {}) {
        app::endEventLoopOnExit(main);
        QTimer poll;
        poll.setInterval(5);
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (whileRunning()) {
                poll.stop();
                if (end)
                    end();
                else
                    main.findChild<QAction*>("Mnu_Exit")->trigger();
            }
        });
        poll.start();
        QTimer::singleShot(60000, [] { QCoreApplication::exit(-1); });
        return QCoreApplication::exec();
    }
};

} // namespace testsupport
