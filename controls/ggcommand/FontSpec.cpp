#include "controls/ggcommand/FontSpec.h"

#include "controls/ggcommand/TextFields.h"

#include <sstream>

namespace ggcommand {

std::string FontSpec::toText() const {
    std::ostringstream out;
    out << family << ", " << formatNumber(pointSize);
    std::string styles;
    for (auto [on, word] : {std::pair{bold, "bold"}, {italic, "italic"}, {underline, "underline"},
                            {strikeOut, "strikeout"}})
        if (on)
            styles += (styles.empty() ? "" : " ") + std::string(word);
    if (!styles.empty())
        out << ", " << styles;
    return out.str();
}

std::optional<FontSpec> FontSpec::parse(const std::string& text) {
    const auto fields = splitFields(text, ',');
    if (fields.size() < 2 || fields.size() > 3 || fields[0].empty())
        return std::nullopt;
    FontSpec font;
    font.family = fields[0];
    const auto size = parseNumber(fields[1]);
    if (!size || *size <= 0)
        return std::nullopt;
    font.pointSize = *size;
    if (fields.size() == 3) {
        std::istringstream words(fields[2]);
        for (std::string word; words >> word;) {
            const std::string w = lowerCase(word);
            if (w == "bold")
                font.bold = true;
            else if (w == "italic")
                font.italic = true;
            else if (w == "underline")
                font.underline = true;
            else if (w == "strikeout")
                font.strikeOut = true;
            else
                return std::nullopt;
        }
    }
    return font;
}

} // namespace ggcommand
