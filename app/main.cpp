// Tavi Scourmill, the desktop program.

#include "app/Icons.h"
#include "app/Screenshots.h"
#include "app/StopSignals.h"
#include "app/TaviMain.h"
#include "app/WindowSet.h"
#include "platform/Platform.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QEvent>
#include <QTextStream>

#include <chrono>
#include <cstdlib>
#include <cstring>

namespace {

/// For the start-up benchmark: prints the wall-clock time of the main window's first paint.
class FirstPaintProbe : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            const auto now = std::chrono::system_clock::now().time_since_epoch();
            QTextStream(stderr) << "first-paint-ns " << std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()
                                << "\n";
            watched->removeEventFilter(this);
        }
        return false;
    }
};

bool wantsScreenshots(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--screenshot") == 0 || std::strncmp(argv[i], "--screenshot=", 13) == 0)
            return true;
    return false;
}

/// Whether the command line asks only for text (help or version), which needs no display.
bool wantsText(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        for (const char* option : {"-h", "--help", "-?", "--help-all", "-v", "--version"})
            if (std::strcmp(argv[i], option) == 0)
                return true;
    return false;
}

/// The desktop program's options; process() answers --help and --version itself and exits.
struct Options {
    QCommandLineParser parser;
    QCommandLineOption screenshot{"screenshot", "Save every window as DIR/<WindowName>.png and exit.", "DIR"};

    explicit Options(QCoreApplication& app) {
        QCoreApplication::setApplicationName("Tavi Scourmill");
        QCoreApplication::setApplicationVersion(SCOURMILL_VERSION);
        parser.setApplicationDescription("Tavi Scourmill: erases what the browser and common programs leave behind.\n"
                                         "The same commands are available on the terminal: scourmill-cli --help");
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOption(screenshot);
        parser.process(app);
    }
};

} // namespace

int main(int argc, char** argv) {
    // Help and version are answered before any window system is needed, so that they work on a
    // terminal without a display. Only then: QApplication takes its own options (-platform, ...)
    // out of argv, which a plain QCoreApplication would reject.
    if (wantsText(argc, argv)) {
        QCoreApplication textOnly(argc, argv);
        Options options(textOnly);
    }
    // Screenshots need no display: lay the windows out offscreen.
    if (wantsScreenshots(argc, argv) && !std::getenv("QT_QPA_PLATFORM"))
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // The main window's menu bar is never shown; it must not reach a desktop's global menu bar.
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QApplication app(argc, argv);
    // Ties the windows to the installed menu entry and its icon (Wayland's app id, KDE's task bar).
    QGuiApplication::setDesktopFileName("org.scourmill.Scourmill");
    QApplication::setQuitOnLastWindowClosed(false); // the tray keeps the program alive

    const Options options(app);
    // Every window, the tool windows included, shows the program's icon.
    QApplication::setWindowIcon(app::programIcon());

    auto platform = platform::createNative();
    if (!platform) {
        QTextStream(stderr) << "Tavi Scourmill does not support this system yet.\n";
        return 2;
    }
    app::WindowSet windows(*platform);
    app::TaviMain main(*platform, windows);
    app::endEventLoopOnExit(main);

    if (options.parser.isSet(options.screenshot))
        return app::saveScreenshots(main, windows, options.parser.value(options.screenshot)) == 0 ? 0 : 1;

    app::exitOnStopSignals(main);
    FirstPaintProbe probe;
    if (std::getenv("SCOURMILL_STARTUP_PROBE"))
        main.installEventFilter(&probe);
    main.show();
    return app.exec();
}
