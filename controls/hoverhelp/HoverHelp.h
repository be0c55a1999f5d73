#pragma once
// Hover help, one piece for every window that has it: while help is on, entering a control pops up
// a menu whose entries are the lines of that control's help. The menu carries tool-tip window
// flags, so it shows without grabbing the pointer or the keyboard and the user's next click still
// reaches the window; it hides when the pointer leaves the control. A button pops its help once
// each time the pointer enters it; a list or text box on every move over it.
//
// A window hands over its help table (core::HelpMenu) and its help toggle's Click; the menus, their
// place on the window's hidden menu bar, the enter and leave wiring and the toggle's captions are
// all done here.

#include "core/HoverHelpText.h"

#include <QObject>
#include <QString>

#include <map>
#include <vector>

class QMenu;
class QMenuBar;
class QWidget;

namespace ggcommand {
class GGCommand;
}

namespace hoverhelp {

class HoverHelp : public QObject {
    Q_OBJECT
public:
    /// Help for the controls of `window`. With `menuBar`, each menu is also placed on that (hidden)
    /// bar, as the window's own menus are.
    explicit HoverHelp(QWidget* window, QMenuBar* menuBar = nullptr);

    /// Builds a pop-up for each of `menus` and wires it to its control, found among the window's
    /// children by object name. A menu without a control (or whose control is missing) is built
    /// but never shown.
    void addMenus(const std::vector<core::HelpMenu>& menus);
    /// The help toggle's Click: "HELP ON" becomes "HELP OFF" and the reverse; help is on while the
    /// toggle reads "HELP OFF".
    void toggle(ggcommand::GGCommand& toggle);

    void setActive(bool active);
    bool active() const { return m_active; }
    /// The pop-up called `menuName`, or null.
    QMenu* menu(const QString& menuName) const;
    /// Pops up the help of `control` at the pointer (when help is active); help already up follows
    /// the pointer.
    void popUp(QWidget* control);
    void hide(QWidget* control);
    /// Hides whichever help is up.
    void hideAll();
    /// The help showing now, or null.
    QMenu* shown() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QMenu* build(const core::HelpMenu& help);
    void attach(QWidget* control, QMenu* menu);

    QWidget* m_window;
    QMenuBar* m_menuBar;
    std::map<QWidget*, QMenu*> m_byControl;
    std::map<QObject*, QWidget*> m_areas; ///< pointer area of a list or text box -> the control
    std::map<QString, QMenu*> m_byName;
    bool m_active = false;
};

} // namespace hoverhelp
