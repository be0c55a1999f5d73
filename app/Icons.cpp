#include "app/Icons.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace app {
namespace {

QIcon drawn(const QColor& top, const QColor& bottom, bool sweeping) {
    QIcon icon;
    for (int size : {16, 22, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        QLinearGradient fill(0, 0, 0, size);
        fill.setColorAt(0, top);
        fill.setColorAt(1, bottom);
        p.setBrush(fill);
        p.setPen(QPen(bottom.darker(150), size / 16.0));
        p.drawRoundedRect(QRectF(0.5, 0.5, size - 1.0, size - 1.0), size / 5.0, size / 5.0);
        // A broom: a handle and a fanned head.
        p.setPen(QPen(Qt::white, size / 10.0, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(size * 0.68, size * 0.18), QPointF(size * 0.45, size * 0.58));
        QPainterPath head;
        head.moveTo(size * 0.40, size * 0.55);
        head.lineTo(size * 0.22, size * 0.82);
        head.lineTo(size * 0.52, size * 0.86);
        head.lineTo(size * 0.55, size * 0.62);
        head.closeSubpath();
        p.setPen(Qt::NoPen);
        p.setBrush(Qt::white);
        p.drawPath(head);
        if (sweeping) {
            p.setBrush(QColor(255, 255, 255, 190));
            for (int i = 0; i < 3; ++i)
                p.drawEllipse(QPointF(size * (0.66 + 0.1 * i), size * (0.80 - 0.08 * i)), size / 18.0, size / 18.0);
        }
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

QIcon programIcon() {
    static const QIcon icon = drawn(QColor(70, 130, 220), QColor(20, 50, 120), false);
    return icon;
}

QIcon cleaningIcon() {
    static const QIcon icon = drawn(QColor(250, 170, 60), QColor(190, 80, 10), true);
    return icon;
}

} // namespace app
