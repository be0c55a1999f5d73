#include "controls/ggcommand/Design.h"

#include "controls/ggcommand/DesignFile.h"
#include "controls/ggcommand/GGCommand.h"

#include <QFile>
#include <QWidget>

namespace ggcommand {

void loadDesign(GGCommand& button, const PropertyBag& bag) {
    button.setProperties(loadProperties(bag, button.defaultProperties()));
}

PropertyBag saveDesign(const GGCommand& button) {
    return saveProperties(button.properties(), button.defaultProperties());
}

int applyDesign(QWidget& window, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const auto sections = parseDesign(file.readAll().toStdString());
    int matched = 0;
    for (GGCommand* button : window.findChildren<GGCommand*>()) {
        const std::string name = button->objectName().toStdString();
        PropertyBag bag;
        for (const auto& section : sections)
            if (section.name == name) {
                bag = section.properties;
                ++matched;
            }
        loadDesign(*button, bag);
    }
    return matched;
}

QString designText(const QWidget& window) {
    std::vector<DesignSection> sections;
    for (const GGCommand* button : window.findChildren<GGCommand*>()) {
        PropertyBag bag = saveDesign(*button);
        if (!bag.empty())
            sections.push_back({button->objectName().toStdString(), std::move(bag)});
    }
    return QString::fromStdString(formatDesign(sections));
}

} // namespace ggcommand
