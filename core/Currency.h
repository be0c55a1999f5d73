#pragma once
// Byte counts above 32 bits travel as a fixed-point decimal: a signed 64-bit count of
// ten-thousandths, so that 1 byte is held as 10000. Conversions from the platform's 64-bit counts
// go through fromCount(), which keeps the one historical quirk of the conversion: a count too large
// to scale is kept unscaled.

#include <cstdint>
#include <string>

namespace core {

class Currency {
public:
    static constexpr std::int64_t Scale = 10000;

    constexpr Currency() = default;
    /// A value from its raw count of ten-thousandths.
    static constexpr Currency fromRaw(std::int64_t raw) {
        Currency c;
        c.m_raw = raw;
        return c;
    }
    /// A 64-bit count (its 8 bytes read as a signed number) scaled by 10000; when the multiplication
    /// overflows, the count unscaled (so the value reads as a ten-thousandth of the count).
    static Currency fromCount(std::uint64_t count);
    /// A whole number of units.
    static Currency fromWhole(std::int64_t whole);

    std::int64_t raw() const { return m_raw; }
    /// The value as a double (units, not ten-thousandths).
    double toDouble() const { return static_cast<double>(m_raw) / Scale; }
    /// The whole-number part, rounded half to even.
    std::int64_t rounded() const;
    /// Plain decimal text: digits with a leading minus sign when negative, no grouping, and decimals
    /// only when the value has a fraction (trailing zeros left out): "4294967296", "-12", "0.0001".
    std::string toString() const;

    friend Currency operator+(Currency a, Currency b) { return fromRaw(a.m_raw + b.m_raw); }
    friend Currency operator-(Currency a, Currency b) { return fromRaw(a.m_raw - b.m_raw); }
    friend auto operator<=>(Currency, Currency) = default;

private:
    std::int64_t m_raw = 0;
};

} // namespace core
