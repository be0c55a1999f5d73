#pragma once
// Small text helpers shared by the design store's readers and writers: trimming, splitting and
// reading numbers, colours and truth values the way a person would write them in a design file.

#include "controls/ggcommand/OleColor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ggcommand {

/// `text` without leading and trailing blanks (spaces, tabs, carriage returns).
std::string trimmed(const std::string& text);
/// `text` with ASCII letters lowered.
std::string lowerCase(std::string text);
/// `text` cut at each `separator`, every field trimmed.
std::vector<std::string> splitFields(const std::string& text, char separator);

/// A decimal number (whole or with a fraction); empty unless the whole text is one.
std::optional<double> parseNumber(const std::string& text);
/// `value` in the shortest decimal form that reads back the same ("8.25", "12").
std::string formatNumber(double value);

/// A whole number in [minimum, maximum]; empty when it is not one or lies outside.
std::optional<std::int64_t> parseInteger(const std::string& text, std::int64_t minimum, std::int64_t maximum);

/// A colour word: "0x8000000F", "&H8000000F&" or "&HFF0000", or a decimal value (negative values
/// as the same 32 bits, as old designs store them).
std::optional<OleColor> parseColor(const std::string& text);
/// "0x" and eight upper-case hexadecimal digits.
std::string formatColor(OleColor color);

/// "True"/"False" in any case, or -1 / 1 for true and 0 for false.
std::optional<bool> parseBool(const std::string& text);
/// "True" or "False".
std::string formatBool(bool value);

} // namespace ggcommand
