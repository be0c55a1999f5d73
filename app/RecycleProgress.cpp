#include "app/RecycleProgress.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace app {

RecycleProgress::~RecycleProgress() {
    delete m_dialog;
}

void RecycleProgress::recycleProgress(std::size_t done, std::size_t items) {
    if (!m_dialog) {
        m_dialog = new QProgressDialog("Emptying the Recycle Bin...", QString(), 0, static_cast<int>(items), m_owner);
        m_dialog->setObjectName("RecycleProgress");
        m_dialog->setWindowTitle("Recycle Bin");
        m_dialog->setMinimumDuration(500);
        m_dialog->setWindowModality(Qt::WindowModal);
    }
    m_dialog->setValue(static_cast<int>(done));
    QCoreApplication::processEvents();
}

} // namespace app
