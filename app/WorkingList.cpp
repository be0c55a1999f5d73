#include "app/WorkingList.h"

#include <QCoreApplication>
#include <QListWidget>

namespace app {

void WorkingList::clearList() {
    m_list.clear();
}

void WorkingList::addLine(const std::string& line) {
    m_list.addItem(QString::fromStdString(line));
}

std::size_t WorkingList::lineCount() const {
    return static_cast<std::size_t>(m_list.count());
}

std::string WorkingList::line(std::size_t index) const {
    const QListWidgetItem* item = m_list.item(static_cast<int>(index));
    return item ? item->text().toStdString() : std::string();
}

void WorkingList::pumpEvents() {
    QCoreApplication::processEvents();
}

} // namespace app
