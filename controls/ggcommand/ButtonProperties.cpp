#include "controls/ggcommand/ButtonProperties.h"

namespace ggcommand {

ButtonProperties ButtonProperties::defaults(const std::string& controlName, const FontSpec& windowFont) {
    ButtonProperties properties;
    properties.caption = controlName;
    properties.font = windowFont;
    return properties;
}

} // namespace ggcommand
