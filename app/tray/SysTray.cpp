#include "app/tray/SysTray.h"

#include <QSystemTrayIcon>

namespace tray {

SysTray::SysTray(QObject* parent) : QObject(parent), m_icon(new QSystemTrayIcon(this)) {
    m_icon->setObjectName("TrayIcon");
    connect(m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::DoubleClick)
            emit doubleClicked();
        else if (reason == QSystemTrayIcon::Context)
            emit rightButtonDown();
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
