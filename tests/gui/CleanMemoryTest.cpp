// The memory-wipe window and the memory monitor driven by object name on the offscreen platform:
// the monitor's timer, the slider, a run started from the button with its progress, the monitor
// docked beside the window from both of its openers, and closing or Exit in the middle of a run.

#include "controls/ggcommand/GGCommand.h"
#include "memory/ui/CleanMemory.h"
#include "memory/ui/MemMonitor.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QTest>
#include <QTimer>


using memory::ui::CleanMemory;
using testsupport::child;

class CleanMemoryTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform = platform::createNative();

    /// The monitor stands flush against the window's right edge, same top.
    static bool docked(const QWidget& monitor, const QWidget& window) {
        return monitor.isVisible() && monitor.y() == window.y() &&
               monitor.x() == window.x() + window.frameGeometry().width();
    }

private slots:
    void monitorReadsItsFiguresOnlyWhileShown() {
        memory::ui::MemMonitor monitor(*m_platform);
        const auto text = [&](const char* name) { return monitor.findChild<QLabel*>(name)->text(); };
        QVERIFY(text("Label1").startsWith("Total Physical     ")); // the figures are the platform's
        QCOMPARE(text("Label8"), QString("Label8")); // filled by the first tick only
        auto* timer = monitor.findChild<QTimer*>("Timer1");
        QVERIFY(!timer->isActive()); // nobody sees the figures yet: none are read
        monitor.show();
        QVERIFY(timer->isActive());
        QTRY_VERIFY(text("Label8").startsWith("PageFile Usage "));
        monitor.hide();
        QVERIFY(!timer->isActive());
    }

    void theSizeFollowsTheSliderHoweverItMoves() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* slider = child<QSlider>(window, "Slider1");
        auto* text3 = child<QLineEdit>(window, "Text3");
        text3->setText("7.25"); // typed by hand: stays until the slider is used
        // The handle dragged from the left end to the right end, on the groove's line.
        const int groove = slider->height() / 3;
        QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(5, groove));
        QTest::mouseMove(slider, QPoint(slider->width() / 2, groove));
        QTest::mouseMove(slider, QPoint(slider->width() - 5, groove));
        QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() - 5, groove));
        QCOMPARE(text3->text(), QString("100"));
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_PageDown);
        QCOMPARE(text3->text(), QString("90"));
    }

    void cleanRunsTheWipeWithTheSizeTypedAndShowsItsProgress() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        auto* label8 = child<QLabel>(window, "Label8");
        child<QLineEdit>(window, "Text3")->setText("0.5");
        child<QPushButton>(window, "Command1")->click();
        QCOMPARE(label8->text(), QString("20"));
        QCOMPARE(child<QFrame>(window, "Line2")->geometry(), QRect(24, 86, 208, 4)); // the fill is full
        QVERIFY(!window.running());
    }

    void bothOpenersDockTheMonitorFlushAgainstTheRightEdge() {
        testsupport::MainWindowUnderTest program;
        emit program.main.findChild<ggcommand::GGCommand*>("GGCommand6")->Click();
        auto* window = qobject_cast<CleanMemory*>(program.windows.window("CleanMemory"));
        QWidget* monitor = program.windows.window("MemMonitor");
        QVERIFY(window && window->isVisible() && monitor);
        QVERIFY(docked(*monitor, *window));
        // Both in view on the screen they open on.
        const QRect screen = window->screen()->availableGeometry();
        QVERIFY(screen.contains(window->frameGeometry()));
        QVERIFY(screen.contains(monitor->frameGeometry()));

        // Wherever the window stands, even hanging off the screen's edge, "Dock Monitor" and the
        // main window's button put the monitor against it.
        monitor->hide();
        for (const QPoint& at : {QPoint(0, 0), QPoint(screen.right() - 40, screen.bottom() - 40), QPoint(-100, 30)}) {
            window->move(at);
            child<QPushButton>(*window, "Command3")->click();
            QVERIFY(docked(*monitor, *window));
            monitor->move(5, 5);
            emit program.main.findChild<ggcommand::GGCommand*>("GGCommand6")->Click();
            QVERIFY(docked(*monitor, *window));
        }
        QCOMPARE(program.windows.window("MemMonitor"), monitor); // one monitor throughout
    }

    void exitInTheMiddleOfAWipeEndsTheRunAndTheProgram() {
        testsupport::MainWindowUnderTest program;
        auto* window = qobject_cast<CleanMemory*>(program.windows.show("CleanMemory"));
        auto* label8 = child<QLabel>(*window, "Label8");
        label8->setText("-");
        child<QLineEdit>(*window, "Text3")->setText("20"); // 40 MB a string: a run of a second or more
        QTimer::singleShot(0, child<QPushButton>(*window, "Command1"), &QPushButton::click);
        QCOMPARE(program.exitWhen([&] { return label8->text().toInt() >= 2; }), 0);
        QVERIFY(!window->running());
        QVERIFY(label8->text().toInt() < 20); // stopped at the next check, not run to its end
    }

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
