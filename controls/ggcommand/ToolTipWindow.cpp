#include "controls/ggcommand/ToolTipWindow.h"

#include <QApplication>
#include <QCursor>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QStyle>

namespace ggcommand {
namespace {

constexpr int Padding = 4;
constexpr int IconSize = 16;
constexpr int StemHeight = 12;
constexpr int BalloonRadius = 8;
constexpr int MaxTextWidth = 400;
// The tip stays up for ten double-click intervals, as the platform's tips do.
constexpr int VisibleDoubleClicks = 10;

QStyle::StandardPixmap iconPixmap(int icon) {
    switch (icon) {
    case 2:
        return QStyle::SP_MessageBoxWarning;
    case 3:
        return QStyle::SP_MessageBoxCritical;
    default:
        return QStyle::SP_MessageBoxInformation;
    }
}

} // namespace

ToolTipWindow::ToolTipWindow(QWidget* owner, const ToolTipLook& look)
    : QWidget(owner, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput), m_look(look), m_owner(owner) {
    setObjectName("GGCommandToolTip");
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    if (m_look.balloon)
        setAttribute(Qt::WA_TranslucentBackground);
    m_wakeUp.setSingleShot(true);
    m_fallAsleep.setSingleShot(true);
    connect(&m_wakeUp, &QTimer::timeout, this, &ToolTipWindow::popUp);
    connect(&m_fallAsleep, &QTimer::timeout, this, &ToolTipWindow::dismiss);
    relayout();
}

void ToolTipWindow::setText(const QString& text) {
    m_look.text = text;
    relayout();
    update();
}

void ToolTipWindow::arm(int delayMs) {
    if (delayMs < 0)
        delayMs = style()->styleHint(QStyle::SH_ToolTip_WakeUpDelay);
    m_wakeUp.start(delayMs);
}

void ToolTipWindow::dismiss() {
    m_wakeUp.stop();
    m_fallAsleep.stop();
    hide();
}

int ToolTipWindow::inset() const {
    // The outline takes one unit; a balloon's rounded corners need some more room.
    return Padding + 1 + (m_look.balloon ? BalloonRadius / 2 : 0);
}

void ToolTipWindow::relayout() {
    ensurePolished();
    QFont titleFont = font();
    titleFont.setBold(true);
    const QFontMetrics textMetrics(font());
    const QFontMetrics titleMetrics(titleFont);
    const QRect textBox = textMetrics.boundingRect(QRect(0, 0, MaxTextWidth, 10000), Qt::TextWordWrap, m_look.text);
    int width = textBox.width();
    int height = textBox.height();
    if (hasTitle()) {
        const int iconWidth = m_look.icon != 0 ? IconSize + Padding : 0;
        width = std::max(width, iconWidth + titleMetrics.horizontalAdvance(m_look.title));
        height += std::max(titleMetrics.height(), m_look.icon != 0 ? IconSize : 0) + Padding;
    }
    // The body is one unit smaller than the window (its outline is drawn inside).
    resize(width + 2 * inset() + 1, height + 2 * inset() + 1 + (m_look.balloon ? StemHeight : 0));
}

QRect ToolTipWindow::bodyRect() const {
    QRect body = rect().adjusted(0, 0, -1, -1);
    if (m_look.balloon)
        body.setTop(StemHeight);
    return body;
}

void ToolTipWindow::popUp() {
    if (!m_owner)
        return;
    relayout();
    QPoint anchor;
    if (m_look.centered)
        anchor = m_owner->mapToGlobal(QPoint(m_owner->width() / 2, m_owner->height()));
    else
        anchor = QCursor::pos() + QPoint(0, m_look.balloon ? 4 : 20);
    // A centred tip, and a balloon's stem, point at the anchor; a plain tip starts at it.
    int left = m_look.centered || m_look.balloon ? anchor.x() - width() / 2 : anchor.x();
    if (const QScreen* screen = m_owner->screen()) {
        const QRect area = screen->availableGeometry();
        left = std::clamp(left, area.left(), std::max(area.left(), area.right() - width()));
    }
    m_stemX = std::clamp(anchor.x() - left, BalloonRadius + StemHeight, std::max(BalloonRadius + StemHeight, width() - BalloonRadius - StemHeight));
    move(left, anchor.y());
    show();
    m_fallAsleep.start(VisibleDoubleClicks * QApplication::doubleClickInterval());
}

void ToolTipWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, m_look.balloon);
    const QRect body = bodyRect();
    painter.setPen(Qt::black);
    painter.setBrush(m_look.background);
    if (m_look.balloon) {
        QPainterPath outline;
        outline.addRoundedRect(QRectF(body).adjusted(0.5, 0.5, -0.5, -0.5), BalloonRadius, BalloonRadius);
        QPainterPath stem;
        stem.moveTo(m_stemX - StemHeight / 2.0, body.top() + 1);
        stem.lineTo(m_stemX, 0.5);
        stem.lineTo(m_stemX + StemHeight / 2.0, body.top() + 1);
        stem.closeSubpath();
        painter.drawPath(outline.united(stem));
    } else {
        painter.drawRect(body);
    }

    QRect content = body.adjusted(inset(), inset(), -inset(), -inset());
    painter.setPen(m_look.foreground);
    if (hasTitle()) {
        QFont titleFont = font();
        titleFont.setBold(true);
        const int lineHeight = std::max(QFontMetrics(titleFont).height(), m_look.icon != 0 ? IconSize : 0);
        int x = content.left();
        if (m_look.icon != 0) {
            const QIcon icon = style()->standardIcon(iconPixmap(m_look.icon), nullptr, this);
            painter.drawPixmap(x, content.top() + (lineHeight - IconSize) / 2, icon.pixmap(IconSize, IconSize));
            x += IconSize + Padding;
        }
        painter.setFont(titleFont);
        painter.drawText(QRect(x, content.top(), content.right() - x + 1, lineHeight), Qt::AlignLeft | Qt::AlignVCenter,
                         m_look.title);
        painter.setFont(font());
        content.setTop(content.top() + lineHeight + Padding);
    }
    painter.drawText(content, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_look.text);
}

} // namespace ggcommand
