#pragma once
// The program's tool windows. Each one is created on first use and then kept, so that there is never
// more than one instance; the main window's buttons and tray entries open them through here, and
// `scourmill --screenshot` walks the whole list.
//
// A tool window is a top-level QWidget whose object name is the window's name ("TaviIndex"), built
// from the platform. To add one, add its factory to the list in WindowSet.cpp.

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <map>
#include <vector>

namespace platform {
class Platform;
}

namespace app {

class WindowSet {
public:
    using Factory = std::function<QWidget*(platform::Platform&)>;

    explicit WindowSet(platform::Platform& platform);
    ~WindowSet();
    WindowSet(const WindowSet&) = delete;
    WindowSet& operator=(const WindowSet&) = delete;

    /// The names of all tool windows, in the order they were registered.
    QStringList names() const;
    /// The window called `name`, created now if it does not exist yet; null for an unknown name.
    QWidget* window(const QString& name);
    /// Whether the window exists now (created and not destroyed since).
    bool exists(const QString& name) const;
    /// Creates the window if needed, shows it modeless and brings it to the front.
    QWidget* show(const QString& name);
    /// Asks every existing window that runs a long operation (widgets::StoppableWindow) to stop it
    /// at its next check, so that the program can end: the program is about to quit.
    void stopAll();

private:
    platform::Platform& m_platform;
    std::vector<std::pair<QString, Factory>> m_factories;
    std::map<QString, QPointer<QWidget>> m_windows;
};

} // namespace app
