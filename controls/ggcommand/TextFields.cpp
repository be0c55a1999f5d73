#include "controls/ggcommand/TextFields.h"

#include <charconv>
#include <cstdio>
#include <limits>

namespace ggcommand {

std::string trimmed(const std::string& text) {
    const char* blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string lowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::vector<std::string> splitFields(const std::string& text, char separator) {
    std::vector<std::string> fields;
    std::string::size_type start = 0;
    while (true) {
        const auto end = text.find(separator, start);
        fields.push_back(trimmed(text.substr(start, end - start)));
        if (end == std::string::npos)
            return fields;
        start = end + 1;
    }
}

std::optional<double> parseNumber(const std::string& text) {
    const std::string t = trimmed(text);
    double value = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), value);
    if (t.empty() || ec != std::errc() || end != t.data() + t.size())
        return std::nullopt;
    return value;
}

std::string formatNumber(double value) {
    char buffer[32];
    const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return ec == std::errc() ? std::string(buffer, end) : std::string("0");
}

std::optional<std::int64_t> parseInteger(const std::string& text, std::int64_t minimum, std::int64_t maximum) {
    const std::string t = trimmed(text);
    std::int64_t value = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), value);
    if (t.empty() || ec != std::errc() || end != t.data() + t.size() || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

std::optional<OleColor> parseColor(const std::string& text) {
    std::string t = lowerCase(trimmed(text));
    std::string hex;
    if (t.starts_with("0x"))
        hex = t.substr(2);
    else if (t.starts_with("&h"))
        hex = t.substr(2, t.ends_with('&') ? t.size() - 3 : std::string::npos);
    if (t.starts_with("0x") || t.starts_with("&h")) {
        std::uint32_t value = 0;
        const auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
        if (hex.empty() || ec != std::errc() || end != hex.data() + hex.size())
            return std::nullopt;
        return value;
    }
    const auto value = parseInteger(t, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::uint32_t>::max());
    if (!value)
        return std::nullopt;
    return static_cast<OleColor>(static_cast<std::uint32_t>(*value));
}

std::string formatColor(OleColor color) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%08X", color);
    return buffer;
}

std::optional<bool> parseBool(const std::string& text) {
    const std::string t = lowerCase(trimmed(text));
    if (t == "true" || t == "-1" || t == "1")
        return true;
    if (t == "false" || t == "0")
        return false;
    return std::nullopt;
}

std::string formatBool(bool value) {
    return value ? "True" : "False";
}

} // namespace ggcommand
