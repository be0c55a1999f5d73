#pragma once
// Between the design store's font description and Qt's fonts. Designs name the classic dialog
// font "MS Sans Serif"; where it is missing (Linux) Qt is told to use a close sans font instead,
// so captions keep their size and shape.

#include "controls/ggcommand/FontSpec.h"

#include <QFont>

namespace ggcommand {

/// The Qt font for `wanted`; the substitutes for the classic dialog font are in place first.
QFont toQFont(const FontSpec& wanted);

/// The description of `font` (its requested family, not the substitute).
FontSpec toFontSpec(const QFont& font);

/// Registers the substitutes for "MS Sans Serif" with Qt; once is enough, more is harmless.
void installFontSubstitutes();

} // namespace ggcommand
