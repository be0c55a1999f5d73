#include "app/tray/SysTray.h"

#include <QMenu>
#include <QSystemTrayIcon>

#ifdef SCOURMILL_HAVE_QTDBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#endif

namespace tray {

ClickReports detectClickReports() {
#ifdef SCOURMILL_HAVE_QTDBUS
    // The same question Qt asks before it puts the icon on a StatusNotifierItem host.
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return ClickReports::Separate;
    QDBusMessage get = QDBusMessage::createMethodCall("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                                                      "org.freedesktop.DBus.Properties", "Get");
    get << QString("org.kde.StatusNotifierWatcher") << QString("IsStatusNotifierHostRegistered");
    const QDBusReply<QDBusVariant> reply = bus.call(get, QDBus::Block, 2000);
    if (reply.isValid() && reply.value().variant().toBool())
        return ClickReports::ActivationOnly;
#endif
    return ClickReports::Separate;
}

SysTray::SysTray(QMenu* menu, ClickReports reports, QObject* parent)
    : QObject(parent), m_icon(new QSystemTrayIcon(this)), m_reports(reports) {
    m_icon->setObjectName("TrayIcon");
    if (reports == ClickReports::ActivationOnly)
        m_icon->setContextMenu(menu);
    connect(m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (m_reports == ClickReports::ActivationOnly) {
            // Any left click: the only way back to a hidden window that this host offers.
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                emit mouseMessage(TrayMessage::LeftDoubleClick);
            return;
        }
        if (reason == QSystemTrayIcon::DoubleClick)
            emit mouseMessage(TrayMessage::LeftDoubleClick);
        else if (reason == QSystemTrayIcon::Context)
            emit mouseMessage(TrayMessage::RightButtonDown);
    });
}

SysTray::~SysTray() {
    RemoveTrayIcon();
}

bool SysTray::available() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void SysTray::AddTrayIcon(const QString& tipText, const QIcon& icon) {
    m_icon->setIcon(icon);
    m_icon->setToolTip(tipText.left(63));
    m_icon->show();
}

void SysTray::RemoveTrayIcon() {
    m_icon->hide();
}

void SysTray::ShowIcon(const QIcon& icon) {
    m_icon->setIcon(icon);
}

bool SysTray::isShown() const {
    return m_icon->isVisible();
}

QIcon SysTray::icon() const {
    return m_icon->icon();
}

QString SysTray::tip() const {
    return m_icon->toolTip();
}

} // namespace tray
