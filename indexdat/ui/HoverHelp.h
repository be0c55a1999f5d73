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
class QWidget;

namespace indexdat::ui {

class HoverHelp : public QObject {
    Q_OBJECT
public:
    explicit HoverHelp(QWidget* window);

    /// Adds the pop-up `menuName` with `lines`, the help of `control` (null: a menu that is never
    /// shown). When `pointerArea` is given (the part of the control that gets the pointer events),
    /// pointer moves over it pop the menu up; otherwise the caller calls popUp() and hide().
    void add(const QString& menuName, const QStringList& itemNames, const QStringList& lines, QWidget* control,
             QWidget* pointerArea = nullptr);
    void setActive(bool active);
    bool active() const { return m_active; }
    /// The pop-up called `menuName`, or null.
    QMenu* menu(const QString& menuName) const;
    /// Pops up the help of `control` at the pointer (when help is active).
    void popUp(QWidget* control);
    void hide(QWidget* control);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window;
    std::map<QWidget*, QMenu*> m_byControl;
    std::map<QObject*, QWidget*> m_areas; ///< pointer area -> its control
    std::map<QString, QMenu*> m_byName;
    bool m_active = false;
};

} // namespace indexdat::ui
