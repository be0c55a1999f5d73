#include "controls/ggcommand/FontConversion.h"

#include <QStringList>

namespace ggcommand {

void installFontSubstitutes() {
    static const bool installed = [] {
        // Metric-compatible with the classic sans fonts first; the others are fallbacks of
        // roughly the same width.
        QFont::insertSubstitutions("MS Sans Serif",
                                   {"Liberation Sans", "Arimo", "Arial", "Helvetica", "DejaVu Sans", "Sans Serif"});
        return true;
    }();
    (void)installed;
}

QFont toQFont(const FontSpec& wanted) {
    installFontSubstitutes();
    QFont font(QString::fromStdString(wanted.family));
    font.setPointSizeF(wanted.pointSize);
    font.setBold(wanted.bold);
    font.setItalic(wanted.italic);
    font.setUnderline(wanted.underline);
    font.setStrikeOut(wanted.strikeOut);
    return font;
}

FontSpec toFontSpec(const QFont& font) {
    FontSpec wanted;
    wanted.family = font.family().toStdString();
    wanted.pointSize = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize() * 0.75;
    wanted.bold = font.bold();
    wanted.italic = font.italic();
    wanted.underline = font.underline();
    wanted.strikeOut = font.strikeOut();
    return wanted;
}

} // namespace ggcommand
