// The main window's Internet buttons cleaning for real: copies of real browser
// profiles, a scratch temporary folder and a Wine prefix whose cookie folder holds record files,
// driven through the real window by object name on the offscreen platform.

#include "app/TaviMain.h"
#include "controls/ggcommand/GGCommand.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/platform/BrowserHome.h"
#include "tests/support/Process.h"
#include "tests/support/Hive.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QTest>
#include <QTimer>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;
using ggcommand::GGCommand;

class InternetButtonsTest : public QObject {
    Q_OBJECT

    fs::path tmp = qgetenv("TMPDIR").toStdString();
    fs::path prefix = qgetenv("WINEPREFIX").toStdString();
    fs::path cookies = prefix / "drive_c/users/me/Cookies";
    std::unique_ptr<testsupport::BrowserHome> m_home;
    std::unique_ptr<testsupport::MainWindowUnderTest> m_app;

    GGCommand* button(int n) { return m_app->main.findChild<GGCommand*>(QString("GGCommand%1").arg(n)); }
    void write(const fs::path& path, const std::string& text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }
    /// The status line at the foot of the window.
    QString status() { return m_app->main.findChild<QLabel*>("Label1")->text(); }

private slots:
    void init() {
        testsupport::writeUserReg(prefix, "\n[Software\\\\Microsoft\\\\Windows\\\\CurrentVersion\\\\Explorer\\\\Shell Folders] 1\n"
                                          "\"Cookies\"=\"C:\\\\users\\\\me\\\\Cookies\"\n");
        write(cookies / "index.dat", "record");
        write(cookies / "me@site.txt", "cookie");
        write(tmp / "one.txt", std::string(5000, 'x'));
        write(tmp / "sub/deeper/two.txt", "two");
        m_home = std::make_unique<testsupport::BrowserHome>();
        m_app = std::make_unique<testsupport::MainWindowUnderTest>(); // start-up lists the cache, reads the paths
    }

    void cleanup() {
        m_app.reset();
        m_home.reset();
        for (const auto& e : fs::directory_iterator(tmp))
            fs::remove_all(e.path());
        fs::remove_all(prefix / "drive_c");
    }

    void fullCleanButtonAndTrayEntryEmptyTheTempFolderAndCookieRecordsAndTellWhatWasLeft() {
        // Firefox runs: its profile stays, and the status line says so.
        testsupport::ChildProcess firefox("lock-holder-f");
        fs::create_symlink("127.0.0.1:+" + std::to_string(firefox.pid()), m_home->firefoxProfile() / "lock");
        QTest::mouseClick(button(3), Qt::LeftButton);
        QVERIFY(fs::is_empty(tmp));
        QCOMPARE(m_app->main.findChild<QListWidget*>("List1")->count(), 0);
        const QString pages = QString::number(testsupport::visitedPages().size());
        QVERIFY2(status().endsWith(" cache entries, 2 temp files, 1 cookie record file, " + pages +
                                   " history entries removed. Firefox is running: its cache and history were left "
                                   "alone; close it and clean again"),
                 qPrintable(status()));
        fs::remove(m_home->firefoxProfile() / "lock");

        write(tmp / "again.txt", "again");
        m_app->main.findChild<QAction*>("Mnu_All")->trigger();
        QVERIFY(fs::is_empty(tmp));
    }

    void theWindowStaysLiveWhileALargeFileIsOverwritten() {
        write(tmp / "large.bin", std::string(8 << 20, 'L'));
        QTimer ticker;
        int ticks = 0;
        connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
        ticker.start(10);
        QTest::mouseClick(button(3), Qt::LeftButton);
        QVERIFY(!fs::exists(tmp / "large.bin"));
        QVERIFY(ticks > 0); // no event loop ran but the wipe's own: the timer fired during the wipe
    }
};

SCOURMILL_QTEST_MAIN(InternetButtonsTest)

#include "InternetButtonsTest.moc"
