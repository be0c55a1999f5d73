// The main window driven as a user drives it: real widgets found by object name, real timers, a
// real child process for AutoClean, on the offscreen platform.

#include "app/TaviMain.h"
#include "app/WindowSet.h"
#include "app/autoclean/AutoCleanState.h"
#include "app/tray/SysTray.h"
#include "controls/ggcommand/GGCommand.h"
#include "controls/hoverhelp/HoverHelp.h"
#include "platform/Platform.h"
#include "tests/support/ChildProcess.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QScreen>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>
#include <QTimer>

#include <filesystem>

using ggcommand::GGCommand;

class TaviMainTest : public QObject {
    Q_OBJECT

    std::unique_ptr<testsupport::MainWindowUnderTest> m_app;

    GGCommand* button(int n) { return m_app->main.findChild<GGCommand*>(QString("GGCommand%1").arg(n)); }
    QTimer* timer(const char* name) { return m_app->main.findChild<QTimer*>(name); }

private slots:
    void init() {
        m_app = std::make_unique<testsupport::MainWindowUnderTest>();
        QVERIFY(m_app->main.isVisible());
    }

    void cleanup() {
        m_app.reset();
    }

    void startUpBuildsEveryControlAndCentresTheWindow() {
        QCOMPARE(m_app->main.windowTitle(), QString("Tavi Scourmill"));
        const QStringList captions = {"Show Cache", "Wipe Cache", "Cache/History/Cookies/TempFiles",
                                      "Manage Data (index.dat) Files", "Pop-UP Stopper", "Wipe Mem-Phys-Virtual",
                                      "MemMon", "Wipe Free Space (safest available)",
                                      "Absolutely Secure File Delete", "Enable AutoClean (currently OFF)",
                                      "Clean Item", "Hide Me"};
        const int numbers[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        for (int i = 0; i < 12; ++i)
            QCOMPARE(button(numbers[i])->caption(), captions[i]);
        QCOMPARE(button(14)->caption(), QString("HELP ON"));
        QCOMPARE(m_app->main.findChild<QGroupBox*>("Frame4")->title(), QString("Internet Controls"));
        QCOMPARE(m_app->main.findChild<QGroupBox*>("Frame3")->title(), QString("Scourmill Controls"));
        for (int n : {5, 4, 3, 2, 1})
            QCOMPARE(button(n)->parentWidget()->objectName(), QString("Frame4"));
        for (int n : {14, 12, 11, 10, 9, 8, 6, 7})
            QCOMPARE(button(n)->parentWidget()->objectName(), QString("Frame3"));

        auto* combo = m_app->main.findChild<QComboBox*>("Combo1");
        QCOMPARE(combo->count(), 12);
        QCOMPARE(combo->itemText(1), QString("IE Typed URL's"));
        QCOMPARE(combo->itemText(11), QString("Do Em All"));
        QCOMPARE(combo->currentText(), QString("Please Choose Item to Clean"));

        QCOMPARE(timer("Timer1")->interval(), 5000);
        QVERIFY(timer("Timer1")->isActive());
        for (const char* name : {"TCheck", "TClosed"}) {
            QCOMPARE(timer(name)->interval(), 2000);
            QVERIFY(!timer(name)->isActive());
        }
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        QCOMPARE(m_app->main.x(), screen.width() / 2 - m_app->main.width() / 2);
        QCOMPARE(m_app->main.y(), screen.height() / 2 - m_app->main.height() / 2);
        QCOMPARE(m_app->main.tempPath(), QString(qgetenv("TMPDIR")));
    }

    void secureDeletionButtonsAndTrayEntriesOpenOneWindowEach() {
        const std::pair<int, const char*> opens[] = {{8, "TaviSecureWipe"}, {9, "frmSize"}};
        const char* entries[] = {"Mnu_WipeFreeSpace", "Mnu_FilesFolders"};
        for (int i = 0; i < 2; ++i) {
            const QString name = opens[i].second;
            QVERIFY(!m_app->windows.exists(name));
            emit button(opens[i].first)->Click();
            QWidget* window = m_app->windows.window(name);
            QVERIFY(window && window->isVisible());
            QVERIFY(window->isWindow());
            window->hide();
            m_app->main.findChild<QAction*>(entries[i])->trigger();
            QCOMPARE(m_app->windows.window(name), window); // the same single instance, shown again
            QVERIFY(window->isVisible());
        }
    }

    void trayMenuHoldsItsEntriesInOrder() {
        auto* menu = m_app->main.findChild<QMenu*>("Mnu_File");
        QStringList seen;
        for (QAction* a : menu->actions())
            seen << a->objectName() + "=" + (a->isSeparator() ? QString("-") : a->text());
        QCOMPARE(seen, QStringList({"Mnu_Show=I'm Done HIDING!", "Mnu_All=Temp/Hist/Cookies", "Mnu_dat=Manage Dat Files",
                                    "Mnu_WipeFreeSpace=WipeFreeSpace", "Mnu_FilesFolders=Secure Delete",
                                    "Mnu_AutoClean=Enable/Disable Auto Clean", "Mnu_Bar=-", "Mnu_Exit=Exit"}));
        QCOMPARE(m_app->main.findChild<QMenu*>("mainhelp")->title(), QString("mainhelp  "));
        QCOMPARE(m_app->main.findChild<QAction*>("mainshowcache")->text(),
                 QString(" Cache  is a place where data is stored for"));
        QCOMPARE(m_app->main.findChild<QAction*>("autoclean2")->text(),
                 QString("activity will automatically be erased on browzer closing"));
    }

    void hoverHelpShowsOnlyWhileTheToggleReadsHelpOffAndLeavesClicksAlone() {
        GGCommand* showCache = button(1);
        GGCommand* wipeCache = button(2);
        auto& help = m_app->main.hoverHelp();
        QTest::mouseMove(showCache, showCache->rect().center());
        QTRY_VERIFY(!help.shown()); // "HELP ON": help is off
        QTest::mouseMove(&m_app->main, QPoint(1, 1));

        QTest::mouseClick(button(14), Qt::LeftButton);
        QCOMPARE(button(14)->caption(), QString("HELP OFF"));
        QTest::mouseMove(showCache, showCache->rect().center());
        QTRY_COMPARE(help.shown(), m_app->main.findChild<QMenu*>("mainhelp"));

        QSignalSpy clicks(wipeCache, &GGCommand::Click);
        QTest::mouseMove(wipeCache, wipeCache->rect().center());
        QTRY_COMPARE(help.shown(), m_app->main.findChild<QMenu*>("mainhelp2"));
        QTest::mouseClick(wipeCache, Qt::LeftButton, {}, wipeCache->rect().center());
        QCOMPARE(clicks.count(), 1);

        QTest::mouseMove(&m_app->main, QPoint(1, 1));
        QTRY_VERIFY(!help.shown());
        QTest::mouseClick(button(14), Qt::LeftButton);
        QCOMPARE(button(14)->caption(), QString("HELP ON"));
        QTest::mouseMove(wipeCache, wipeCache->rect().center());
        QTest::qWait(50);
        QVERIFY(!help.shown());
    }

    void autoCleanCleansOnceAfterTheBrowserCloses() {
        GGCommand* toggle = button(10);
        QTimer* check = timer("TCheck");
        QTimer* closed = timer("TClosed");
        check->setInterval(30); // the real 2000 ms would only make the test slow
        closed->setInterval(30);
        QSignalSpy cleans(&m_app->main, &app::TaviMain::autoCleaned);

        QTest::mouseClick(toggle, Qt::LeftButton);
        QCOMPARE(toggle->caption(), QString::fromStdString(autoclean::OnCaption));
        QVERIFY(check->isActive() && !closed->isActive());

        auto browser = std::make_unique<testsupport::ChildProcess>("firefox-esr");
        QTRY_VERIFY(closed->isActive());
        QVERIFY(!check->isActive());
        QTest::qWait(100);
        QCOMPARE(cleans.count(), 0); // still running: no clean

        // Switched off while waiting for the close: the close still cleans, once, and re-arms TCheck.
        QTest::mouseClick(toggle, Qt::LeftButton);
        QCOMPARE(toggle->caption(), QString::fromStdString(autoclean::OffCaption));
        QVERIFY(closed->isActive());
        browser.reset();
        QTRY_COMPARE(cleans.count(), 1);
        QVERIFY(check->isActive() && !closed->isActive());
        QCOMPARE(toggle->caption(), QString::fromStdString(autoclean::OffCaption));
        QTest::qWait(100);
        QCOMPARE(cleans.count(), 1);
    }

    void trayDoubleClickShowsTheWindowAndExitRemovesTheIcon() {
        tray::SysTray& tray = m_app->main.sysTray();
        QCOMPARE(tray.tip(), QString("Tavi Scourmill"));
        m_app->main.hide();
        emit tray.trayIcon()->activated(QSystemTrayIcon::Trigger); // a single click does nothing
        QVERIFY(!m_app->main.isVisible());
        emit tray.trayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QVERIFY(m_app->main.isVisible());

        QSignalSpy exits(&m_app->main, &app::TaviMain::exitRequested);
        m_app->main.findChild<QAction*>("Mnu_Exit")->trigger();
        QVERIFY(!tray.isShown());
        QCOMPARE(exits.count(), 1);
    }

    void hideMeNeverLosesTheWindow() {
        QTest::mouseClick(button(12), Qt::LeftButton);
        if (tray::SysTray::available())
            QVERIFY(!m_app->main.isVisible());
        else
            QVERIFY(m_app->main.isMinimized()); // no notification area to come back from
    }

    void listDoubleClickAndPopUpStopperStartRealPrograms() {
        // Stand-ins for the desktop's default handler and the pop-up stopper, found on the search
        // path; each writes down how it was called.
        testsupport::ScratchDir bin;
        const auto marker = [&](const char* name) { return bin.path() / (std::string(name) + ".called"); };
        for (const char* name : {"xdg-open", "tavipop"}) {
            const auto script = bin.write(name, "#!/bin/sh\necho \"$@\" > \"$0.called\"\n");
            std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        }
        const QByteArray savedPath = qgetenv("PATH");
        qputenv("PATH", QByteArray::fromStdString(bin.str()) + ":" + savedPath);

        auto* list = m_app->main.findChild<QListWidget*>("List1");
        list->addItem("http://example.invalid/page?a=1&b=2");
        QListWidgetItem* item = list->item(0);
        const QPoint at = list->visualItemRect(item).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(list->viewport(), Qt::LeftButton, {}, at); // QTest keeps the button down otherwise
        QTRY_VERIFY(std::filesystem::exists(marker("xdg-open")));
        QTRY_COMPARE(QString::fromStdString(testsupport::readFile(marker("xdg-open"))),
                     QString("http://example.invalid/page?a=1&b=2\n"));

        QTest::mouseClick(button(5), Qt::LeftButton);
        QTRY_VERIFY(std::filesystem::exists(marker("tavipop")));
        std::filesystem::remove(bin.path() / "tavipop");
        QTest::mouseClick(button(5), Qt::LeftButton); // missing now: nothing is reported
        qputenv("PATH", savedPath);
    }

    void wipeCacheEmptiesTheListAndTheConnectionLabelStaysSet() {
        auto* list = m_app->main.findChild<QListWidget*>("List1");
        list->addItem("http://example.invalid/a");
        QTest::mouseClick(button(2), Qt::LeftButton);
        QCOMPARE(list->count(), 0);
        auto* label = m_app->main.findChild<QLabel*>("lblconnected");
        QVERIFY(label->text().isEmpty() || label->text() == "Connected to the Internet");
    }
};

SCOURMILL_QTEST_MAIN(TaviMainTest)

#include "TaviMainTest.moc"
