#pragma once
// Paints the button's face onto its retained surface: background, gradient lines, picture and
// caption for one look, and the thin frame for one state; plus the window edge around the face.
// What goes where, and in which colour, comes from the plain logic; this only draws it.

#include "controls/ggcommand/ButtonProperties.h"
#include "controls/ggcommand/ButtonStateMachine.h"
#include "controls/ggcommand/Frame.h"
#include "controls/ggcommand/Placement.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QString>

class QPainter;

namespace ggcommand {

/// Where the last face paint put the caption and the picture; an alignment outside the grid
/// keeps the previous place.
struct FaceLayout {
    Point caption;
    Point picture;
};

/// `color` as a Qt colour, system references translated through `colors`.
QColor toQColor(OleColor color, const SystemColors& colors);

/// The face in full: `BackColor`, the gradient (colours swapped when `inverse`), the picture and
/// the caption in `look`. Updates `layout`.
void paintFace(QImage& face, const ButtonProperties& properties, const QString& caption, const QFont& font,
               const QPixmap& picture, bool inverse, CaptionLook look, const SystemColors& colors, FaceLayout& layout);

/// The frame along the face's edges in `state` (0 normal, 1 hover, 2 pressed).
void paintFrame(QImage& face, int state, const ButtonProperties& properties, const SystemColors& colors);

/// The window edge drawn in the band between `outer` and the face.
void paintWindowEdge(QPainter& painter, const QRect& outer, const WindowEdge& edge, const SystemColors& colors);

} // namespace ggcommand
