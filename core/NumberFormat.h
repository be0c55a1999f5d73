#pragma once
// Numbers shown to the user: whole numbers with thousands grouped by the locale's separator, the
// way the display patterns "###,###,###,##0" and "#,###,###,##0" show them (at least one digit,
// never a decimal part, every digit kept however long the number is).

#include <cstdint>
#include <string>

namespace core {

class Currency;

/// The locale's thousands separator; ',' when the locale names none (the C locale).
std::string thousandsSeparator();

/// `value` with its thousands grouped: 1234567 -> "1,234,567", -1000 -> "-1,000", 0 -> "0".
std::string formatGrouped(std::int64_t value);
/// A fixed-point value, rounded half to even to a whole number first.
std::string formatGrouped(const Currency& value);
/// A fractional value, rounded half to even to a whole number first.
std::string formatGrouped(double value);

} // namespace core
