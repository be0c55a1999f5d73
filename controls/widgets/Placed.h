#pragma once
// Placing the controls of a window the way they were designed: each child widget carries its
// documented object name and stands at a fixed place. Designed positions and sizes are in twips,
// and the program uses one scale for them everywhere: 15 twips per pixel.

#include <QFont>
#include <QRect>
#include <QWidget>

#include <utility>

namespace widgets {

constexpr int TwipsPerPixel = 15;

/// A length in twips as whole pixels (the fraction dropped, as the designer's scale does).
constexpr int pixels(int twips) {
    return twips / TwipsPerPixel;
}

/// `font` as the designer's 8-point sans, which the designed places fit; its metric twins stand in
/// for it. Windows shown side by side take it alike, so that their text has one size.
inline QFont designedFont(QFont font) {
    font.setFamilies({"MS Sans Serif", "Liberation Sans", "Arimo", "Arial"});
    font.setPointSize(8);
    return font;
}

/// A new child of `parent` of type W, built from `args` followed by the parent, named `objectName`
/// and placed at `place` (pixels).
template <class W, class... Args>
W* placed(QWidget* parent, const char* objectName, const QRect& place, Args&&... args) {
    auto* widget = new W(std::forward<Args>(args)..., parent);
    widget->setObjectName(QString::fromLatin1(objectName));
    widget->setGeometry(place);
    return widget;
}

} // namespace widgets
