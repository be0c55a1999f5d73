#include "controls/hoverhelp/HoverHelp.h"

#include "controls/ggcommand/GGCommand.h"

#include <QAbstractScrollArea>
#include <QCursor>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

namespace hoverhelp {

HoverHelp::HoverHelp(QWidget* window, QMenuBar* menuBar) : QObject(window), m_window(window), m_menuBar(menuBar) {}

void HoverHelp::addMenus(const std::vector<core::HelpMenu>& menus) {
    for (const core::HelpMenu& help : menus) {
        QMenu* menu = build(help);
        if (!help.control.empty())
            if (auto* control = m_window->findChild<QWidget*>(QString::fromStdString(help.control)))
                attach(control, menu);
    }
}

QMenu* HoverHelp::build(const core::HelpMenu& help) {
    const QString name = QString::fromStdString(help.menu);
    auto* menu = new QMenu(help.title.empty() ? name : QString::fromStdString(help.title), m_window);
    menu->setObjectName(name);
    // A tool tip, not a pop-up: no grab, no focus, and clicks pass through to the window.
    menu->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
    menu->setAttribute(Qt::WA_ShowWithoutActivating);
    menu->setAttribute(Qt::WA_TransparentForMouseEvents);
    for (const core::HelpLine& line : help.lines)
        menu->addAction(QString::fromStdString(line.text))->setObjectName(QString::fromStdString(line.entry));
    if (m_menuBar)
        m_menuBar->addMenu(menu);
    m_byName[name] = menu;
    return menu;
}

void HoverHelp::attach(QWidget* control, QMenu* menu) {
    m_byControl[control] = menu;
    if (auto* button = qobject_cast<ggcommand::GGCommand*>(control)) {
        connect(button, &ggcommand::GGCommand::MouseEnter, this, [this, button] { popUp(button); });
        connect(button, &ggcommand::GGCommand::MouseExit, this, [this, button] { hide(button); });
        return;
    }
    // Lists and text boxes get the pointer in their viewport.
    auto* area = qobject_cast<QAbstractScrollArea*>(control);
    QWidget* pointerArea = area ? area->viewport() : control;
    m_areas[pointerArea] = control;
    pointerArea->setMouseTracking(true);
    pointerArea->installEventFilter(this);
}

void HoverHelp::toggle(ggcommand::GGCommand& toggle) {
    const std::string caption = core::toggledHelpCaption(toggle.caption().toStdString());
    toggle.setCaption(QString::fromStdString(caption));
    setActive(caption == core::HelpOff);
}

void HoverHelp::setActive(bool active) {
    m_active = active;
    if (!active)
        hideAll();
}

void HoverHelp::hideAll() {
    for (auto& [name, menu] : m_byName)
        menu->hide();
}

QMenu* HoverHelp::menu(const QString& menuName) const {
    const auto it = m_byName.find(menuName);
    return it == m_byName.end() ? nullptr : it->second;
}

void HoverHelp::popUp(QWidget* control) {
    const auto it = m_byControl.find(control);
    if (!m_active || it == m_byControl.end())
        return;
    // Beside the pointer, so that the pointer never rests on the help itself.
    const QPoint at = QCursor::pos() + QPoint(12, 16);
    if (it->second->isVisible())
        it->second->move(at);
    else
        it->second->popup(at);
}

void HoverHelp::hide(QWidget* control) {
    const auto it = m_byControl.find(control);
    if (it != m_byControl.end())
        it->second->hide();
}

QMenu* HoverHelp::shown() const {
    for (const auto& [name, menu] : m_byName)
        if (menu->isVisible())
            return menu;
    return nullptr;
}

bool HoverHelp::eventFilter(QObject* watched, QEvent* event) {
    const auto it = m_areas.find(watched);
    if (it == m_areas.end())
        return false;
    QWidget* control = it->second;
    if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter)
        popUp(control);
    else if (event->type() == QEvent::Leave || event->type() == QEvent::MouseButtonPress)
        hide(control);
    return false;
}

} // namespace hoverhelp
