#include "controls/ggcommand/PropertyBag.h"

#include "controls/ggcommand/TextFields.h"

#include <limits>

namespace ggcommand {
namespace {

// One list of the persisted keys and the fields they hold, used for saving, loading and naming.
template <class Visit>
void forEachPersisted(Visit&& visit) {
    using P = ButtonProperties;
    visit("Caption", &P::caption);
    visit("CaptionAlignment", &P::captionAlignment);
    visit("CaptionXOffset", &P::captionXOffset);
    visit("CaptionYOffset", &P::captionYOffset);
    visit("UseHoverProperties", &P::useHoverProperties);
    visit("FontBoldOnHover", &P::fontBoldOnHover);
    visit("FontColorOnHover", &P::fontColorOnHover);
    visit("BackColor", &P::backColor);
    visit("ForeColor", &P::foreColor);
    visit("Font", &P::font);
    visit("Picture", &P::picture);
    visit("PictureAlignment", &P::pictureAlignment);
    visit("PictureXOffset", &P::pictureXOffset);
    visit("PictureYOffset", &P::pictureYOffset);
    visit("AlwaysShowBorder", &P::alwaysShowBorder);
    visit("ToolTip", &P::toolTip);
    visit("ToolTipTitle", &P::toolTipTitle);
    visit("ToolTipBackColor", &P::toolTipBackColor);
    visit("ToolTipForeColor", &P::toolTipForeColor);
    visit("ToolTipIcon", &P::toolTipIcon);
    visit("ToolTipStyle", &P::toolTipStyle);
    visit("Border3DStyle", &P::border3DStyle);
    visit("GradientOrientation", &P::gradientOrientation);
    visit("UseGradientFill", &P::useGradientFill);
    visit("GradientFromColor", &P::gradientFromColor);
    visit("GradientToColor", &P::gradientToColor);
    visit("GradientInverseOnPress", &P::gradientInverseOnPress);
    visit("MousePointer", &P::mousePointer);
    visit("Enabled", &P::enabled);
}

std::string toText(const std::string& value) { return value; }
std::string toText(std::int32_t value) { return std::to_string(value); }
std::string toText(std::int16_t value) { return std::to_string(value); }
std::string toText(bool value) { return formatBool(value); }
std::string toText(OleColor value) { return formatColor(value); }
std::string toText(const FontSpec& value) { return value.toText(); }

template <class Int>
std::optional<Int> readInteger(const std::string& text) {
    const auto value = parseInteger(text, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max());
    return value ? std::optional<Int>(static_cast<Int>(*value)) : std::nullopt;
}

std::optional<std::string> fromText(const std::string& text, const std::string*) { return text; }
std::optional<std::int32_t> fromText(const std::string& text, const std::int32_t*) {
    return readInteger<std::int32_t>(text);
}
std::optional<std::int16_t> fromText(const std::string& text, const std::int16_t*) {
    return readInteger<std::int16_t>(text);
}
std::optional<bool> fromText(const std::string& text, const bool*) { return parseBool(text); }
std::optional<OleColor> fromText(const std::string& text, const OleColor*) { return parseColor(text); }
std::optional<FontSpec> fromText(const std::string& text, const FontSpec*) { return FontSpec::parse(text); }

} // namespace

void PropertyBag::write(const std::string& key, const std::string& value) {
    for (auto& entry : m_entries)
        if (entry.first == key) {
            entry.second = value;
            return;
        }
    m_entries.emplace_back(key, value);
}

std::optional<std::string> PropertyBag::read(const std::string& key) const {
    for (const auto& entry : m_entries)
        if (entry.first == key)
            return entry.second;
    return std::nullopt;
}

const std::vector<std::string>& persistedKeys() {
    static const std::vector<std::string> keys = [] {
        std::vector<std::string> list;
        forEachPersisted([&](const char* key, auto) { list.emplace_back(key); });
        return list;
    }();
    return keys;
}

PropertyBag saveProperties(const ButtonProperties& properties, const ButtonProperties& defaults) {
    PropertyBag bag;
    forEachPersisted([&](const char* key, auto field) {
        if (!(properties.*field == defaults.*field))
            bag.write(key, toText(properties.*field));
    });
    return bag;
}

ButtonProperties loadProperties(const PropertyBag& bag, const ButtonProperties& defaults) {
    ButtonProperties properties = defaults;
    forEachPersisted([&](const char* key, auto field) {
        const auto text = bag.read(key);
        if (!text)
            return;
        if (const auto value = fromText(*text, &(properties.*field)))
            properties.*field = *value;
    });
    properties.toolTipCentered = false;
    return properties;
}

} // namespace ggcommand
