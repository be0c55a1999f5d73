#pragma once
// Hover help of the main window: while the help toggle reads "HELP OFF", pointing at a control pops
// up a small menu whose entries are the lines of that control's help. The menus are shown with
// tool-tip window flags, transparent for input, so they never take the mouse or the next click.

#include <QObject>
#include <QPoint>
#include <QString>

#include <vector>

class QMenu;
class QMenuBar;
class QWidget;

namespace app {

struct HelpLine {
    const char* entry; ///< the menu entry's object name
    const char* text;
};

struct HelpMenu {
    const char* menu;    ///< the menu's object name
    const char* title;   ///< its caption on the (hidden) menu bar
    const char* control; ///< the control it explains
    std::vector<HelpLine> lines;
};

/// The main window's ten help menus, in menu-bar order.
const std::vector<HelpMenu>& mainWindowHelp();

class HoverHelp : public QObject {
    Q_OBJECT
public:
    /// Builds one menu per entry of `menus` as children of `window` and adds them to `bar`.
    HoverHelp(QWidget* window, QMenuBar* bar, const std::vector<HelpMenu>& menus);

    /// Shows the help of `control` at `globalPos` (moving it there if it is already up).
    void popUp(const QString& control, const QPoint& globalPos);
    /// Hides whichever help is up.
    void hide();
    /// The help menu showing now, or null.
    QMenu* shown() const;
    QMenu* menuFor(const QString& control) const;

private:
    std::vector<std::pair<QString, QMenu*>> m_menus;
};

} // namespace app
