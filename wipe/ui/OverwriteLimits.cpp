#include "wipe/ui/OverwriteLimits.h"

#include "controls/widgets/Placed.h"
#include "platform/Platform.h"
#include "wipe/WipeTexts.h"

namespace wipe::ui {

QLabel* overwriteLimitsLabel(QWidget* parent, const QRect& place) {
    auto* label = widgets::placed<QLabel>(parent, "lblOverwriteLimits", place);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.85);
    label->setFont(font);
    label->setStyleSheet("color: #8a5a00;");
    label->hide();
    return label;
}

void showOverwriteLimits(QLabel& label, platform::Platform& platform, const std::string& path) {
    const std::string note = texts::overwriteLimits(path, platform.drives().storage(path));
    label.setText(QString::fromStdString(note));
    label.setToolTip(label.text());
    label.setVisible(!note.empty());
}

} // namespace wipe::ui
