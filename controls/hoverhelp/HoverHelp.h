#pragma once
// Hover help: while help is on, entering a control pops up a menu whose entries are the lines of
// that control's help. The menu carries tool-tip window flags, so it shows without grabbing the
// pointer or the keyboard and the user's next click still reaches the window; it hides when the
// pointer leaves the control.

#include <QObject>
#include <QString>
#include <QStringList>

#include <map>

class QMenu;
class QMenuBar;
class QWidget;

namespace hoverhelp {

class HoverHelp : public QObject {
    Q_OBJECT
public:
    /// Help for the controls of `window`. With `menuBar`, each menu is also placed on that (hidden)
    /// bar, as the window's own menus are.
    explicit HoverHelp(QWidget* window, QMenuBar* menuBar = nullptr);

    /// Adds the pop-up `menuName` with `lines`, the help of `control` (null: a menu that is never
    /// shown). When `pointerArea` is given (the part of the control that gets the pointer events),
    /// pointer moves over it pop the menu up; otherwise the caller calls popUp() and hide().
    /// `title` is the menu's caption on the menu bar (the menu's name when empty).
    void add(const QString& menuName, const QString& title, const QStringList& itemNames, const QStringList& lines,
             QWidget* control, QWidget* pointerArea = nullptr);
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
    QWidget* m_window;
    QMenuBar* m_menuBar;
    std::map<QWidget*, QMenu*> m_byControl;
    std::map<QObject*, QWidget*> m_areas; ///< pointer area -> its control
    std::map<QString, QMenu*> m_byName;
    bool m_active = false;
};

} // namespace hoverhelp
