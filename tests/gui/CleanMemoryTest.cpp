// The memory-wipe window driven by object name on the offscreen platform: its captions,
// the suggested size from /proc/meminfo, the slider, the explanation in a real message box, a real
// run (its peak resident size from /proc), the monitor docked beside it from both of its openers,
// and Exit in the middle of a run.

#include "controls/ggcommand/GGCommand.h"
#include "memory/ui/CleanMemory.h"
#include "memory/ui/MemMonitor.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/ProcFields.h"
#include "tests/support/QtTestMain.h"
#include "tests/support/Scratch.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <fstream>

using memory::ui::CleanMemory;
using testsupport::child;

class CleanMemoryTest : public QObject {
    Q_OBJECT

    std::unique_ptr<platform::Platform> m_platform = platform::createNative();

    static double kilobyteField(const char* file, const std::string& name) {
        return static_cast<double>(testsupport::procKilobytes(file, name));
    }

    static void screenshot(QWidget& window, const QString& name) {
        if (const QString dir = qEnvironmentVariable("SCOURMILL_SCREENSHOTS"); !dir.isEmpty())
            window.grab().save(dir + "/" + name + ".png");
    }

    static QRect twips(int left, int top, int width, int height) {
        return {left / 15, top / 15, width / 15, height / 15};
    }

    /// The monitor stands flush against the window's right edge, same top.
    static bool docked(const QWidget& monitor, const QWidget& window) {
        return monitor.isVisible() && monitor.y() == window.y() &&
               monitor.x() == window.x() + window.frameGeometry().width();
    }

private slots:
    void controlsShowTheirCaptionsAndTheSuggestedSize() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        QCOMPARE(window.windowTitle(), QString("Tavi Wipe Memory"));
        const std::pair<const char*, QString> captions[] = {
            {"Command2", "Read B4 Using"}, {"Command1", "Clean Physical and Virtual Mem"}, {"Command3", "Dock Monitor"},
            {"Label3", "Array Size"},      {"Label1", "MB"},                               {"Label8", "0"},
        };
        for (const auto& [name, caption] : captions) {
            QWidget* w = child<QWidget>(window, name);
            if (auto* button = qobject_cast<QPushButton*>(w))
                QCOMPARE(button->text(), caption);
            else
                QCOMPARE(qobject_cast<QLabel*>(w)->text(), caption);
        }
        QCOMPARE(child<QLineEdit>(window, "Text3")->text(), QString("0"));
        // One control's place stands for the designed layout.
        QCOMPARE(child<QWidget>(window, "Command1")->geometry(), twips(600, 720, 2655, 375));
        auto* slider = child<QSlider>(window, "Slider1");
        QCOMPARE(slider->minimum(), 0);
        QCOMPARE(slider->maximum(), 100);
        // The fill (Line2) lies over the whole track (Line1), from x 360 to 3480 twips.
        for (const char* line : {"Line1", "Line2"}) {
            QCOMPARE(child<QFrame>(window, line)->x(), 24);
            QCOMPARE(child<QFrame>(window, line)->width(), 208);
        }

        // The commit limit (RAM + swap) / 83.33333333, grouped.
        const double commit = kilobyteField("/proc/meminfo", "MemTotal") + kilobyteField("/proc/meminfo", "SwapTotal");
        const QString suggested = QLocale(QLocale::English).toString(std::llround(commit / 83.33333333));
        QCOMPARE(child<QLabel>(window, "Label2")->text(), "Suggested Array Size   " + suggested);
    }

    void sliderWritesItsValueIntoTheSizeWhenTheMouseLetsGo() {
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
        QCOMPARE(text3->text(), QString("7.25")); // nothing yet: the mouse has not let go
        QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(slider->width() - 5, groove));
        QCOMPARE(slider->value(), 100);
        QCOMPARE(text3->text(), QString("100"));
    }

    void readB4UsingShowsTheSevenLinesInAPlainMessageBox() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        QString text, title;
        QMessageBox::Icon icon = QMessageBox::Information;
        QMessageBox::StandardButtons buttons;
        QTimer::singleShot(0, [&] {
            auto* box = window.findChild<QMessageBox*>("MessageBox");
            QVERIFY(box);
            text = box->text();
            title = box->windowTitle();
            icon = box->icon();
            buttons = box->standardButtons();
            screenshot(*box, "CleanMemory-ReadB4Using");
            box->button(QMessageBox::Ok)->click();
        });
        child<QPushButton>(window, "Command2")->click();
        QCOMPARE(text, QString(" This function needs to be used in conjuntion with the memory monitor.\r\n"
                               " The idea here is to create a full memory load and then have a PageFile Usage\r\n"
                               " equal to the amount allocated to the system. Your system will seem slow on all "
                               "1rst executions\r\n"
                               " because your memory is clean! 2nd openings will be fast because they will have "
                               "been put back in\r\n"
                               " cache after the 1rst reopening. Memory has been wiped per Dept of Def. standards.\r\n"
                               " Use the suggested array size and adjust till total memory (ram + pagefile) is "
                               "achieved\r\n"
                               " Again, You can observe this by watching the Memory Monitor."));
        QCOMPARE(title, QString("Tavi Scourmill"));
        QCOMPARE(icon, QMessageBox::NoIcon);
        QCOMPARE(buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    }

    void cleanRunsTheWipeWithTheSizeTypedAndShowsItsProgress() {
        CleanMemory window(*m_platform, nullptr);
        window.show();
        auto* text3 = child<QLineEdit>(window, "Text3");
        auto* line2 = child<QFrame>(window, "Line2");
        auto* label8 = child<QLabel>(window, "Label8");

        // 1.5 millions of characters: 21 strings of 3 MB are all held at the peak.
        text3->setText("1.5");
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak starts afresh from here
        const double before = kilobyteField("/proc/self/status", "VmRSS");
        child<QPushButton>(window, "Command1")->click();
        QVERIFY(kilobyteField("/proc/self/status", "VmHWM") - before >= 42 * 1'500'000);
        QCOMPARE(label8->text(), QString("20"));
        QCOMPARE(line2->geometry(), QRect(24, 86, 208, 4));
        QVERIFY(!window.running());
        screenshot(window, "CleanMemory-AfterRun");

        // Not a number: size 0, and the run still goes through its 21 passes.
        label8->setText("x");
        text3->setText("abc");
        child<QPushButton>(window, "Command1")->click();
        QCOMPARE(label8->text(), QString("20"));
    }

    void bothOpenersDockTheMonitorFlushAgainstTheRightEdge() {
        testsupport::MainWindowUnderTest program;
        emit program.main.findChild<ggcommand::GGCommand*>("GGCommand6")->Click();
        auto* window = qobject_cast<CleanMemory*>(program.windows.window("CleanMemory"));
        QWidget* monitor = program.windows.window("MemMonitor");
        QVERIFY(window && window->isVisible());
        QVERIFY(monitor);
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
