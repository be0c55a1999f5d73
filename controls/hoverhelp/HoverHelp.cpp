#include "controls/hoverhelp/HoverHelp.h"

#include <QCursor>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

namespace hoverhelp {

HoverHelp::HoverHelp(QWidget* window, QMenuBar* menuBar) : QObject(window), m_window(window), m_menuBar(menuBar) {}

void HoverHelp::add(const QString& menuName, const QString& title, const QStringList& itemNames,
                    const QStringList& lines, QWidget* control, QWidget* pointerArea) {
    auto* menu = new QMenu(title.isEmpty() ? menuName : title, m_window);
    menu->setObjectName(menuName);
    // A tool tip, not a pop-up: no grab, no focus, and clicks pass through to the window.
    menu->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
    menu->setAttribute(Qt::WA_ShowWithoutActivating);
    menu->setAttribute(Qt::WA_TransparentForMouseEvents);
    for (int i = 0; i < lines.size(); ++i)
        menu->addAction(lines[i])->setObjectName(itemNames.value(i));
    if (m_menuBar)
        m_menuBar->addMenu(menu);
    m_byName[menuName] = menu;
    if (control)
        m_byControl[control] = menu;
    if (control && pointerArea) {
        m_areas[pointerArea] = control;
        pointerArea->setMouseTracking(true);
        pointerArea->installEventFilter(this);
    }
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
