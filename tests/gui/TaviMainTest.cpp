// The main window driven as a user drives it: real widgets found by object name, real timers,
// real programs started from it, on the offscreen platform.

#include "app/TaviMain.h"
#include "app/tray/SysTray.h"
#include "controls/ggcommand/GGCommand.h"
#include "controls/hoverhelp/HoverHelp.h"
#include "controls/prompts/MessageBoxPrompts.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/Hive.h"
#include "tests/support/QtTestMain.h"

#include <QAction>
#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>

#include <filesystem>

using ggcommand::GGCommand;

class TaviMainTest : public QObject {
    Q_OBJECT

    std::unique_ptr<testsupport::MainWindowUnderTest> m_app;

    GGCommand* button(int n) { return m_app->main.findChild<GGCommand*>(QString("GGCommand%1").arg(n)); }

private slots:
    void init() {
        m_app = std::make_unique<testsupport::MainWindowUnderTest>();
        QVERIFY(m_app->main.isVisible());
    }

    void cleanup() {
        m_app.reset();
    }

    void toolButtonsAndTrayEntriesOpenOneWindowEach() {
        const struct {
            int button;
            const char* window;
            const char* entry;
        } opens[] = {{4, "TaviIndex", "Mnu_dat"}, {8, "TaviSecureWipe", "Mnu_WipeFreeSpace"},
                     {9, "frmSize", "Mnu_FilesFolders"}};
        prompts::MessageBoxPrompts::setUnattended(true); // TaviIndex finds no file here and says so
        for (const auto& open : opens) {
            QVERIFY(!m_app->windows.exists(open.window));
            QTest::mouseClick(button(open.button), Qt::LeftButton);
            QWidget* window = m_app->windows.window(open.window);
            QVERIFY(window && window->isVisible());
            window->hide();
            m_app->main.findChild<QAction*>(open.entry)->trigger();
            QCOMPARE(m_app->windows.window(open.window), window); // the same single instance, shown again
            QVERIFY(window->isVisible());
        }
        prompts::MessageBoxPrompts::setUnattended(false);
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
        QTest::mouseClick(wipeCache, Qt::LeftButton, {}, wipeCache->rect().center());
        QCOMPARE(clicks.count(), 1);
    }

    void hideMeNeverLosesTheWindowAndTrayDoubleClickShowsItAndExitRemovesTheIcon() {
        QTest::mouseClick(button(12), Qt::LeftButton);
        if (tray::SysTray::available())
            QVERIFY(!m_app->main.isVisible());
        else
            QVERIFY(m_app->main.isMinimized()); // no notification area to come back from
        tray::SysTray& tray = m_app->main.sysTray();
        m_app->main.hide();
        emit tray.trayIcon()->activated(QSystemTrayIcon::Trigger); // a single click does nothing
        QVERIFY(!m_app->main.isVisible());
        emit tray.trayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QVERIFY(m_app->main.isVisible());
        auto* menu = m_app->main.findChild<QMenu*>("Mnu_File");
        emit tray.trayIcon()->activated(QSystemTrayIcon::Context); // no host here to show the menu
        QTRY_VERIFY(menu->isVisible());
        menu->hide();

        QSignalSpy exits(&m_app->main, &app::TaviMain::exitRequested);
        m_app->main.findChild<QAction*>("Mnu_Exit")->trigger();
        QVERIFY(!tray.isShown());
        QCOMPARE(exits.count(), 1);
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
        qputenv("PATH", savedPath);
    }
};

SCOURMILL_QTEST_MAIN(TaviMainTest)

#include "TaviMainTest.moc"
