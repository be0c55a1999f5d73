#include "controls/prompts/MessageBoxPrompts.h"

#include <QApplication>
#include <QMessageBox>
#include <QTextStream>

namespace prompts {
namespace {

bool g_unattended = false;

QMessageBox::Icon iconFor(int style) {
    switch (style & 0x70) {
    case core::MsgStyle::Critical:
        return QMessageBox::Critical;
    case core::MsgStyle::Question:
        return QMessageBox::Question;
    case core::MsgStyle::Exclamation:
        return QMessageBox::Warning;
    case core::MsgStyle::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

int run(QWidget* owner, const std::string& text, const std::string& title, int style,
        QMessageBox::StandardButtons buttons) {
    if (g_unattended) {
        QTextStream(stderr) << QString::fromStdString(title) << ": " << QString::fromStdString(text) << "\n";
        return buttons.testFlag(QMessageBox::No) ? QMessageBox::No : QMessageBox::Ok;
    }
    QMessageBox box(iconFor(style), QString::fromStdString(title), QString::fromStdString(text), buttons,
                    owner ? owner : QApplication::activeWindow());
    box.setObjectName("MessageBox");
    return box.exec();
}

} // namespace

void MessageBoxPrompts::setUnattended(bool unattended) {
    g_unattended = unattended;
}

bool MessageBoxPrompts::askYesNo(const std::string& text, const std::string& title, int style) {
    return run(m_owner, text, title, style, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void MessageBoxPrompts::tell(const std::string& text, const std::string& title, int style) {
    run(m_owner, text, title, style, QMessageBox::Ok);
}

} // namespace prompts
