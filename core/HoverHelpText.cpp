#include "core/HoverHelpText.h"

namespace core {

std::string toggledHelpCaption(const std::string& caption) {
    if (caption == HelpOn)
        return HelpOff;
    if (caption == HelpOff)
        return HelpOn;
    return caption;
}

} // namespace core
