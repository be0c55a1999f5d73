#include "controls/ggcommand/FacePainter.h"

#include "controls/ggcommand/Gradient.h"

#include <QFontMetrics>
#include <QPainter>

namespace ggcommand {
namespace {

// Placement uses the picture's size as the design kept it: hundredths of a millimetre at
// 15 twips per pixel.
constexpr int TwipsPerPixel = 15;

void drawBevel(QPainter& painter, const QRect& r, const QColor& topLeft, const QColor& bottomRight) {
    painter.setPen(topLeft);
    painter.drawLine(r.left(), r.top(), r.right(), r.top());
    painter.drawLine(r.left(), r.top(), r.left(), r.bottom());
    painter.setPen(bottomRight);
    painter.drawLine(r.left(), r.bottom(), r.right(), r.bottom());
    painter.drawLine(r.right(), r.top(), r.right(), r.bottom());
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
    const int width = face.width();
    const int height = face.height();
    face.fill(toQColor(properties.backColor, colors));
    QPainter painter(&face);

    if (properties.useGradientFill) {
        const auto lines = gradientLines(colors.translate(properties.gradientFromColor),
                                         colors.translate(properties.gradientToColor), inverse,
                                         properties.gradientOrientation, width, height);
        for (const auto& line : lines) {
            painter.setPen(QColor(line.color.red, line.color.green, line.color.blue));
            painter.drawLine(line.x1, line.y1, line.x2, line.y2);
        }
    }

    const Extent faceExtent{static_cast<double>(width), static_cast<double>(height)};
    if (!picture.isNull()) {
        const Extent pictureSize{pictureExtent(himetricFromPixels(picture.width()), TwipsPerPixel),
                                 pictureExtent(himetricFromPixels(picture.height()), TwipsPerPixel)};
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
    drawBevel(painter, face.rect(), toQColor(frame.topLeft, colors), toQColor(frame.bottomRight, colors));
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
