#include "app/WindowSet.h"

#include "controls/widgets/ToolRun.h"

#include "memory/ui/CleanMemory.h"
#include "memory/ui/MemMonitor.h"
#include "wipe/ui/TaviSecureWipe.h"
#include "wipe/ui/frmSize.h"
#include "indexdat/ui/TaviIndex.h"

namespace app {

WindowSet::WindowSet(platform::Platform& platform) : m_platform(platform) {
    // One line per tool window: {"Name", [](platform::Platform& p) { return new Window(p); }},
    m_factories = {
        {"MemMonitor", [](platform::Platform& p) { return new memory::ui::MemMonitor(p); }},
        {"CleanMemory",
         [this](platform::Platform& p) {
             return new memory::ui::CleanMemory(p, [this] { return window("MemMonitor"); });
         }},
        {"TaviSecureWipe", [](platform::Platform& p) { return new wipe::ui::TaviSecureWipe(p); }},
        {"frmSize", [](platform::Platform& p) { return new wipe::ui::frmSize(p); }},
        {"TaviIndex", [](platform::Platform& p) { return new indexdat::ui::TaviIndex(p); }},
    };
}

WindowSet::~WindowSet() {
    for (auto& [name, window] : m_windows)
        delete window.data();
}

QStringList WindowSet::names() const {
    QStringList out;
    for (const auto& [name, factory] : m_factories)
        out << name;
    return out;
}

QWidget* WindowSet::window(const QString& name) {
    if (auto it = m_windows.find(name); it != m_windows.end() && it->second)
        return it->second;
    for (const auto& [known, factory] : m_factories) {
        if (known == name) {
            QWidget* created = factory(m_platform);
            created->setObjectName(name);
            m_windows[name] = created;
            return created;
        }
    }
    return nullptr;
}

bool WindowSet::exists(const QString& name) const {
    const auto it = m_windows.find(name);
    return it != m_windows.end() && it->second;
}

void WindowSet::stopAll() {
    for (auto& [name, window] : m_windows)
        if (auto* stoppable = dynamic_cast<widgets::StoppableWindow*>(window.data()))
            stoppable->requestStop();
}

QWidget* WindowSet::show(const QString& name) {
    QWidget* w = window(name);
    if (w) {
        w->show();
        w->raise();
        w->activateWindow();
    }
    return w;
}

} // namespace app
