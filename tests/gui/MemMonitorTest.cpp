// The memory monitor window on the offscreen platform, against /proc/meminfo.

#include "memory/ui/MemMonitor.h"
#include "platform/Platform.h"
#include "tests/support/QtTestMain.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <fstream>

class MemMonitorTest : public QObject {
    Q_OBJECT

    static QString memTotal() {
        std::ifstream in("/proc/meminfo");
        std::string key;
        unsigned long long kb = 0;
        in >> key >> kb;
        return QString::number(kb * 1024);
    }

private slots:
    void showsSevenFiguresAtLoadAndAllNineAfterTheFirstTick() {
        auto platform = platform::createNative();
        memory::ui::MemMonitor monitor(*platform);
        QCOMPARE(monitor.windowTitle(), QString("Tavi MemMonitor"));
        const auto text = [&](const char* name) { return monitor.findChild<QLabel*>(name)->text(); };
        QCOMPARE(text("Label1"), "Total Physical     " + memTotal());
        QVERIFY(text("Label7").startsWith("Available Extended Virtual     "));
        QCOMPARE(text("Label8"), QString("Label8"));
        QCOMPARE(text("Label9"), QString("Label9"));
        auto* timer = monitor.findChild<QTimer*>("Timer1");
        QVERIFY(!timer->isActive()); // nobody sees the figures yet: none are read

        monitor.show();
        QVERIFY(timer->isActive());
        QTRY_VERIFY(text("Label8").startsWith("PageFile Usage "));
        QVERIFY(text("Label9").startsWith("Current memory load:     "));
        QVERIFY(text("Label9").endsWith(" %."));
        // Stacked top to bottom in the documented order, load above usage.
        QVERIFY(monitor.findChild<QLabel*>("Label7")->y() < monitor.findChild<QLabel*>("Label9")->y());
        QVERIFY(monitor.findChild<QLabel*>("Label9")->y() < monitor.findChild<QLabel*>("Label8")->y());

        monitor.hide();
        QVERIFY(!timer->isActive());
    }
};

SCOURMILL_QTEST_MAIN(MemMonitorTest)

#include "MemMonitorTest.moc"
