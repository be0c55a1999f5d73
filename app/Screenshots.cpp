#include "app/Screenshots.h"

#include "app/WindowSet.h"
#include "controls/prompts/MessageBoxPrompts.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTimer>
#include <QPixmap>
#include <QTextStream>
#include <QWidget>

namespace app {
namespace {

bool save(QWidget& window, const QDir& dir) {
    window.show();
    // Long enough for the first tick of the windows that fill themselves on a timer.
    QEventLoop settle;
    QTimer::singleShot(250, &settle, &QEventLoop::quit);
    settle.exec();
    const QString file = dir.filePath(window.objectName() + ".png");
    const bool ok = window.grab().save(file);
    QTextStream(stdout) << (ok ? "saved " : "could not save ") << file << "\n";
    return ok;
}

} // namespace

int saveScreenshots(QWidget& mainWindow, WindowSet& windows, const QString& folder) {
    prompts::MessageBoxPrompts::setUnattended(true);
    QDir dir(folder);
    if (!dir.mkpath(".")) {
        QTextStream(stderr) << "cannot create " << folder << "\n";
        return 1;
    }
    int failed = save(mainWindow, dir) ? 0 : 1;
    for (const QString& name : windows.names())
        if (QWidget* w = windows.window(name); !w || !save(*w, dir))
            ++failed;
    return failed;
}

} // namespace app
