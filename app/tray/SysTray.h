#pragma once
// The notification-area icon: added at start-up, present whether the window is shown or hidden,
// its picture swapped while AutoClean cleans, removed when the main window unloads or on Exit.
//
// The icon hands the main window two mouse messages: a left double click (show the window) and a
// right button press (the tray menu); a single left click does nothing. That holds where the
// notification area reports clicks and double clicks separately (Windows, the X11 system tray).
// A StatusNotifierItem host (KDE, GNOME with the AppIndicator extension) reports every left click
// as one activation and never a double click, and shows the item's menu itself: there an
// activation counts as the double click, and the tray menu is handed to the host.

#include <QIcon>
#include <QObject>
#include <QString>

class QMenu;
class QSystemTrayIcon;

namespace tray {

/// The mouse messages the icon sends the main window, by their window-message numbers.
enum class TrayMessage { LeftDoubleClick = 515, RightButtonDown = 516 };

/// How the desktop's notification area reports clicks on the icon.
enum class ClickReports {
    Separate,       ///< single clicks, double clicks and the right button each on their own
    ActivationOnly, ///< one activation for any left click; the host shows the menu
};

/// ActivationOnly when a StatusNotifierItem host is registered on the session bus (that is the
/// notification area Qt then uses), otherwise Separate.
ClickReports detectClickReports();

class SysTray : public QObject {
    Q_OBJECT
public:
    /// An icon whose clicks are read as the desktop reports them; `menu` is the tray menu, which a
    /// StatusNotifierItem host shows by itself.
    SysTray(QMenu* menu, ClickReports reports, QObject* parent = nullptr);
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
    ClickReports clickReports() const { return m_reports; }
    /// The underlying tray icon (for tests that raise its activation).
    QSystemTrayIcon* trayIcon() const { return m_icon; }

signals:
    /// A mouse message for the main window.
    void mouseMessage(tray::TrayMessage message);

private:
    QSystemTrayIcon* m_icon;
    ClickReports m_reports;
};

} // namespace tray
