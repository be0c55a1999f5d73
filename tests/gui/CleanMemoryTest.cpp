// The memory-wipe window and the memory monitor driven by object name on the offscreen platform:
// the monitor's timer, the monitor shown by both of its openers, and a run started from the button
// with its progress, stopped by closing the window.

#include "controls/ggcommand/GGCommand.h"
#include "memory/ui/CleanMemory.h"
#include "memory/ui/MemMonitor.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using memory::ui::CleanMemory;
using testsupport::child;

class CleanMemoryTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform = platform::createNative();

private slots:
    void monitorReadsItsFiguresOnlyWhileShown() {
        memory::ui::MemMonitor monitor(*m_platform);
        const auto text = [&](const char* name) { return monitor.findChild<QLabel*>(name)->text(); };
        QVERIFY(text("Label1").startsWith("Total Physical     ")); // the figures are the platform's
        auto* timer = monitor.findChild<QTimer*>("Timer1");
        QVERIFY(!timer->isActive()); // nobody sees the figures yet: none are read
        monitor.show();
        QVERIFY(timer->isActive());
        QTRY_VERIFY(text("Label8").startsWith("PageFile Usage "));
        monitor.hide();
        QVERIFY(!timer->isActive());
    }

    void bothOpenersShowTheMonitor() {
        testsupport::MainWindowUnderTest program;
        emit program.main.findChild<ggcommand::GGCommand*>("GGCommand6")->Click();
        auto* window = program.windows.window("CleanMemory");
        QWidget* monitor = program.windows.window("MemMonitor");
        QVERIFY(window && window->isVisible() && monitor && monitor->isVisible());
        monitor->hide();
        child<QPushButton>(*window, "Command3")->click(); // "Dock Monitor"
        QVERIFY(monitor->isVisible());
        QCOMPARE(program.windows.window("MemMonitor"), monitor); // one monitor throughout
    }

    // The button starts a run of the size typed, its progress shows, and closing stops it.
    void closingTheWindowStopsItsRun() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        auto* label8 = child<QLabel>(window, "Label8");
        label8->setText("-");
        child<QLineEdit>(window, "Text3")->setText("20");
        QString shownAtClose;
        QTimer poll;
        connect(&poll, &QTimer::timeout, [&] {
            if (shownAtClose.isEmpty() && label8->text().toInt() >= 1) {
                shownAtClose = label8->text();
                window.close();
            }
        });
        poll.start(1);
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(!window.isVisible());
        QCOMPARE(label8->text(), shownAtClose); // not one pass more
        QVERIFY(shownAtClose.toInt() < 20);
        QVERIFY(!window.running());
    }
};

SCOURMILL_QTEST_MAIN(CleanMemoryTest)

#include "CleanMemoryTest.moc"
