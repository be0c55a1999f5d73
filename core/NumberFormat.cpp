#include "core/NumberFormat.h"

#include "core/Currency.h"
#include "core/Rounding.h"

#include <clocale>
#include <locale>

namespace core {

std::string thousandsSeparator() {
    try {
        const std::locale user("");
        const auto& punct = std::use_facet<std::numpunct<char>>(user);
        if (!punct.grouping().empty())
            return std::string(1, punct.thousands_sep());
    } catch (const std::exception&) {
        // An unknown locale name in the environment: fall back below.
    }
    return ",";
}

std::string formatGrouped(std::int64_t value) {
    const bool negative = value < 0;
    const std::uint64_t magnitude = negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    const std::string digits = std::to_string(magnitude);
    const std::string sep = thousandsSeparator();
    std::string out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            out += sep;
        out += digits[i];
    }
    return negative ? '-' + out : out;
}

std::string formatGrouped(const Currency& value) {
    return formatGrouped(value.rounded());
}

std::string formatGrouped(double value) {
    return formatGrouped(roundHalfEven(value));
}

} // namespace core
