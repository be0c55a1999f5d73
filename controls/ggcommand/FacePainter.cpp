#include "controls/ggcommand/FacePainter.h"

#include "controls/ggcommand/Gradient.h"
#include "controls/widgets/Placed.h"

#include <algorithm>
#include <cstdlib>

#include <QFontMetrics>
#include <QPainter>

namespace ggcommand {
namespace {

// Lines are one unit wide whatever the screen's scale, so they are filled as unit-high or
// unit-wide rectangles rather than drawn with a pen.
void fillLine(QPainter& painter, int x1, int y1, int x2, int y2, const QColor& color) {
    if (y1 == y2)
        painter.fillRect(QRect(std::min(x1, x2), y1, std::abs(x2 - x1) + 1, 1), color);
    else
        painter.fillRect(QRect(x1, std::min(y1, y2), 1, std::abs(y2 - y1) + 1), color);
}

void drawBevel(QPainter& painter, const QRect& r, const QColor& topLeft, const QColor& bottomRight) {
    fillLine(painter, r.left(), r.top(), r.right(), r.top(), topLeft);
    fillLine(painter, r.left(), r.top(), r.left(), r.bottom(), topLeft);
    fillLine(painter, r.left(), r.bottom(), r.right(), r.bottom(), bottomRight);
    fillLine(painter, r.right(), r.top(), r.right(), r.bottom(), bottomRight);
}

} // namespace

QColor toQColor(OleColor color, const SystemColors& colors) {
    const Rgb rgb = colors.translate(color);
    return QColor(rgb.red, rgb.green, rgb.blue);
}

void paintFace(QImage& face, const ButtonProperties& properties, const QString& caption, const QFont& font,
               const QPixmap& picture, bool inverse, CaptionLook look, const SystemColors& colors, FaceLayout& layout) {
    if (face.isNull())
        return;
    const QSize size = face.deviceIndependentSize().toSize();
    const int width = size.width();
    const int height = size.height();
    face.fill(toQColor(properties.backColor, colors));
    QPainter painter(&face);

    if (properties.useGradientFill) {
        const auto lines = gradientLines(colors.translate(properties.gradientFromColor),
                                         colors.translate(properties.gradientToColor), inverse,
                                         properties.gradientOrientation, width, height);
        for (const auto& line : lines)
            fillLine(painter, line.x1, line.y1, line.x2, line.y2, QColor(line.color.red, line.color.green, line.color.blue));
    }

    const Extent faceExtent{static_cast<double>(width), static_cast<double>(height)};
    if (!picture.isNull()) {
        const QSize pixels = picture.deviceIndependentSize().toSize();
        const Extent pictureSize{pictureExtent(himetricFromPixels(pixels.width()), widgets::TwipsPerPixel),
                                 pictureExtent(himetricFromPixels(pixels.height()), widgets::TwipsPerPixel)};
        if (const auto at = picturePosition(properties.pictureAlignment, faceExtent, pictureSize,
                                            properties.pictureXOffset, properties.pictureYOffset))
            layout.picture = *at;
        painter.drawPixmap(layout.picture.x, layout.picture.y, picture);
    }

    QFont captionFont = font;
    if (look == CaptionLook::Hover)
        captionFont.setBold(properties.fontBoldOnHover);
    const QFontMetrics metrics(captionFont);
    const Extent text{static_cast<double>(metrics.horizontalAdvance(caption)), static_cast<double>(metrics.height())};
    if (const auto at = captionPosition(properties.captionAlignment, faceExtent, text, properties.captionXOffset,
                                        properties.captionYOffset))
        layout.caption = *at;
    painter.setFont(captionFont);
    painter.setPen(toQColor(look == CaptionLook::Hover ? properties.fontColorOnHover : properties.foreColor, colors));
    painter.drawText(QPoint(layout.caption.x, layout.caption.y + metrics.ascent()), caption);
}

void paintFrame(QImage& face, int state, const ButtonProperties& properties, const SystemColors& colors) {
    if (face.isNull())
        return;
    const FrameColors frame = frameColors(state, properties.alwaysShowBorder, properties.backColor);
    QPainter painter(&face);
    drawBevel(painter, QRect(QPoint(0, 0), face.deviceIndependentSize().toSize()), toQColor(frame.topLeft, colors), toQColor(frame.bottomRight, colors));
}

void paintWindowEdge(QPainter& painter, const QRect& outer, const WindowEdge& edge, const SystemColors& colors) {
    const QColor face = toQColor(syscolor::ButtonFace, colors);
    const QColor shadow = toQColor(syscolor::ButtonShadow, colors);
    const QColor highlight = toQColor(syscolor::ButtonHighlight, colors);
    const QColor dark = toQColor(0x80000015, colors); // 3D dark shadow
    const QColor light = toQColor(0x80000016, colors); // 3D light
    QRect r = outer;
    if (edge.modalFrame) {
        drawBevel(painter, r, light, dark);
        r.adjust(1, 1, -1, -1);
        drawBevel(painter, r, highlight, shadow);
        r.adjust(1, 1, -1, -1);
        drawBevel(painter, r, face, face);
        r.adjust(1, 1, -1, -1);
    }
    if (edge.clientEdge) {
        drawBevel(painter, r, shadow, highlight);
        r.adjust(1, 1, -1, -1);
        drawBevel(painter, r, dark, light);
        r.adjust(1, 1, -1, -1);
    }
    if (edge.staticEdge)
        drawBevel(painter, r, shadow, highlight);
}

} // namespace ggcommand
