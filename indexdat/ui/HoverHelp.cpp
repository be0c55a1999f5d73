#include "indexdat/ui/HoverHelp.h"

#include <QCursor>
#include <QEvent>
#include <QMenu>
#include <QWidget>

namespace indexdat::ui {

HoverHelp::HoverHelp(QWidget* window) : QObject(window), m_window(window) {}

void HoverHelp::add(const QString& menuName, const QStringList& itemNames, const QStringList& lines,
                    QWidget* control, QWidget* pointerArea) {
    auto* menu = new QMenu(m_window);
    menu->setObjectName(menuName);
    // A tool tip, not a pop-up: no grab, no focus, and clicks pass through to the window.
    menu->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
    menu->setAttribute(Qt::WA_ShowWithoutActivating);
    menu->setAttribute(Qt::WA_TransparentForMouseEvents);
    for (int i = 0; i < lines.size(); ++i)
        menu->addAction(lines[i])->setObjectName(itemNames.value(i));
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
        for (auto& [control, menu] : m_byControl)
            menu->hide();
}

QMenu* HoverHelp::menu(const QString& menuName) const {
    const auto it = m_byName.find(menuName);
    return it == m_byName.end() ? nullptr : it->second;
}

void HoverHelp::popUp(QWidget* control) {
    const auto it = m_byControl.find(control);
    if (!m_active || it == m_byControl.end() || it->second->isVisible())
        return;
    it->second->popup(QCursor::pos() + QPoint(12, 16));
}

void HoverHelp::hide(QWidget* control) {
    const auto it = m_byControl.find(control);
    if (it != m_byControl.end())
        it->second->hide();
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

} // namespace indexdat::ui
