// The tray icon on both kinds of notification area, on X11 (under xvfb-run): a private session bus
// with a stand-in StatusNotifierItem watcher decides whether a host is registered. With one, the
// icon is clicked on the bus as a host does; without, the window pops the tray menu up itself.

#include "app/TaviMain.h"
#include "app/tray/SysTray.h"
#include "tests/gui/MainWindowUnderTest.h"
#include "tests/support/QtTestMain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QMenu>
#include <QProcess>
#include <QSystemTrayIcon>
#include <QTest>
#include <QThread>

#include <atomic>
#include <mutex>

namespace {

/// The watcher's side of a StatusNotifierItem desktop: whether a host is registered (that decides
/// which notification area Qt uses) and the items that registered with it.
class FakeWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
public:
    bool hostRegistered() const { return registered; }
    std::atomic<bool> registered{false};

    QString lastItem() const {
        std::lock_guard lock(m_mutex);
        return m_items.isEmpty() ? QString() : m_items.last();
    }

public slots:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service) {
        std::lock_guard lock(m_mutex);
        m_items << service;
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_items;
};

} // namespace

class TrayTest : public QObject {
    Q_OBJECT

    QProcess m_bus;
    QString m_address;
    QThread m_watcherThread;
    FakeWatcher* m_watcher = nullptr;

    static QMenu* trayMenu(app::TaviMain& main) { return main.findChild<QMenu*>("Mnu_File"); }

private slots:
    void initTestCase() {
        if (QGuiApplication::platformName() != "xcb")
            QSKIP("needs the X11 platform (run under xvfb-run): Qt offers StatusNotifierItems only there");
        m_bus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        QVERIFY2(m_bus.waitForReadyRead(10000), "dbus-daemon did not start");
        m_address = QString::fromUtf8(m_bus.readLine()).trimmed();
        // Before anything in this process opens the session bus.
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());

        // The watcher answers from its own thread and connection, as the desktop's process would,
        // while the program under test waits for the reply.
        m_watcherThread.start();
        m_watcher = new FakeWatcher;
        m_watcher->moveToThread(&m_watcherThread);
        QDBusConnection bus = QDBusConnection::connectToBus(m_address, "watcher");
        QVERIFY(bus.isConnected());
        QVERIFY(bus.registerService("org.kde.StatusNotifierWatcher"));
        QVERIFY(bus.registerObject("/StatusNotifierWatcher", m_watcher,
                                   QDBusConnection::ExportAllProperties | QDBusConnection::ExportScriptableSlots));
    }

    void cleanupTestCase() {
        QDBusConnection::disconnectFromBus("watcher");
        QDBusConnection::disconnectFromBus("host");
        delete m_watcher; // its thread no longer runs anything of it
        m_watcherThread.quit();
        m_watcherThread.wait();
        m_bus.terminate();
        m_bus.waitForFinished();
    }

    void oneClickOnAStatusNotifierItemBringsTheHiddenWindowBack() {
        m_watcher->registered = true;
        testsupport::MainWindowUnderTest app;
        tray::SysTray& tray = app.main.sysTray();
        QCOMPARE(tray.clickReports(), tray::ClickReports::ActivationOnly);
        QCOMPARE(tray.trayIcon()->contextMenu(), trayMenu(app.main)); // the host shows it
        QTRY_VERIFY(!m_watcher->lastItem().isEmpty());

        QTest::mouseClick(app.main.findChild<QWidget*>("GGCommand12"), Qt::LeftButton); // "Hide Me"
        QTRY_VERIFY(!app.main.isVisible());
        // What the host sends for a left click on the item.
        QDBusMessage click = QDBusMessage::createMethodCall(m_watcher->lastItem(), "/StatusNotifierItem",
                                                            "org.kde.StatusNotifierItem", "Activate");
        click << 10 << 10;
        QVERIFY(QDBusConnection::connectToBus(m_address, "host").send(click));
        QTRY_VERIFY(app.main.isVisible());
        QVERIFY(!trayMenu(app.main)->isVisible());
    }

    // Clicks and double clicks themselves are in TaviMainTest, on a tray of this kind.
    void withoutAHostTheWindowPopsTheTrayMenuUpItself() {
        m_watcher->registered = false;
        testsupport::MainWindowUnderTest app;
        tray::SysTray& tray = app.main.sysTray();
        QCOMPARE(tray.clickReports(), tray::ClickReports::Separate);
        QCOMPARE(tray.trayIcon()->contextMenu(), nullptr);
        emit tray.trayIcon()->activated(QSystemTrayIcon::Context);
        QTRY_VERIFY(trayMenu(app.main)->isVisible());
        trayMenu(app.main)->hide();
    }
};

SCOURMILL_QTEST_MAIN(TrayTest)

#include "TrayTest.moc"
