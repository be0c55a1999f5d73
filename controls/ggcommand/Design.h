#pragma once
// Loading a window's button designs from its design store, and writing them back out. Each window
// keeps one design file among the program's resources (for example ":/design/TaviMain.design");
// the window calls applyDesign once, right after creating its buttons and naming them. The file
// format is described in DesignFile.h; a short example:
//
//     [GGCommand3]
//     Caption=Cache/History/Cookies/TempFiles
//     Font=MS Sans Serif, 8.25
//     GradientFromColor=0x00FFFFFF
//     GradientToColor=0x00C08040
//
// Keys left out take the button's defaults (caption = object name, font = the holder's font).

#include "controls/ggcommand/PropertyBag.h"

#include <QString>

class QWidget;

namespace ggcommand {

class GGCommand;

/// Loads `bag` into `button`: keys present and readable take effect, the rest take the button's
/// defaults. The tooltip's centring is false afterwards.
void loadDesign(GGCommand& button, const PropertyBag& bag);

/// The saved form of `button`: only the values that differ from its defaults.
PropertyBag saveDesign(const GGCommand& button);

/// Loads every `GGCommand` below `window` from the design file at `path` (a resource path or a
/// file), finding each button's section by its object name; a button without a section gets its
/// defaults. Returns how many sections matched a button; 0 when the file cannot be read, in which
/// case the buttons are left as they are.
int applyDesign(QWidget& window, const QString& path);

/// The design file text for every `GGCommand` below `window`, in creation order; buttons with
/// nothing but defaults are left out.
QString designText(const QWidget& window);

} // namespace ggcommand
