#include "controls/prompts/MessageBoxPrompts.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QTextStream>

#include <algorithm>

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

/// A text its author broke into lines keeps them: the box is made wide enough for the longest line
/// (up to most of the screen) instead of wrapping the lines again at its usual width.
void keepLines(QMessageBox& box, const QString& text) {
    auto* label = box.findChild<QLabel*>("qt_msgbox_label");
    if (!label || !text.contains('\n'))
        return;
    int widest = 0;
    for (QString line : text.split('\n'))
        widest = std::max(widest, label->fontMetrics().horizontalAdvance(line.remove('\r')));
    widest += label->fontMetrics().averageCharWidth(); // the wrap decision rounds against us
    if (const QScreen* screen = box.screen())
        widest = std::min(widest, screen->availableGeometry().width() * 9 / 10);
    label->setMinimumWidth(widest);
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
    keepLines(box, box.text());
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
