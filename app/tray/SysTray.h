#pragma once
// The notification-area icon: added at start-up, present whether the window is shown or hidden,
// its picture swapped while AutoClean cleans, removed when the main window unloads or on Exit.
// A double click asks for the window, the right button for the tray menu; a single left click does
// nothing.

#include <QIcon>
#include <QObject>
#include <QString>

class QSystemTrayIcon;

namespace tray {

class SysTray : public QObject {
    Q_OBJECT
public:
    explicit SysTray(QObject* parent = nullptr);
    ~SysTray() override;

    /// Whether the desktop has a notification area to put the icon in.
    static bool available();

    /// Shows `icon` with the tip `tipText` (at most 63 characters are kept, as the record holds 64).
    void AddTrayIcon(const QString& tipText, const QIcon& icon);
    /// Takes the icon out of the notification area.
    void RemoveTrayIcon();
    /// Swaps the picture of the icon already shown.
    void ShowIcon(const QIcon& icon);

    bool isShown() const;
    QIcon icon() const;
    QString tip() const;
    /// The underlying tray icon (for tests that raise its activation).
    QSystemTrayIcon* trayIcon() const { return m_icon; }

signals:
    void doubleClicked();
    void rightButtonDown();

private:
    QSystemTrayIcon* m_icon;
};

} // namespace tray
