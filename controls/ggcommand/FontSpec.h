#pragma once
// A caption font as the design store keeps it: family, size in points and style, written as
// one readable line such as "MS Sans Serif, 8.25, bold italic".

#include <optional>
#include <string>

namespace ggcommand {

struct FontSpec {
    std::string family = "MS Sans Serif";
    double pointSize = 8.25;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;

    friend bool operator==(const FontSpec&, const FontSpec&) = default;

    /// "Family, size[, style words]", the style words among bold, italic, underline, strikeout.
    std::string toText() const;
    /// Reads what toText writes (style words in any order and case); empty when the family is
    /// missing, the size is not a positive number or a style word is unknown.
    static std::optional<FontSpec> parse(const std::string& text);
};

} // namespace ggcommand
