#include "controls/prompts/MessageBoxPrompts.h"

#include <QApplication>
#include <QMessageBox>

namespace prompts {
namespace {

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
    QMessageBox box(iconFor(style), QString::fromStdString(title), QString::fromStdString(text), buttons,
                    owner ? owner : QApplication::activeWindow());
    box.setObjectName("MessageBox");
    return box.exec();
}

} // namespace

bool MessageBoxPrompts::askYesNo(const std::string& text, const std::string& title, int style) {
    return run(m_owner, text, title, style, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void MessageBoxPrompts::tell(const std::string& text, const std::string& title, int style) {
    run(m_owner, text, title, style, QMessageBox::Ok);
}

} // namespace prompts
