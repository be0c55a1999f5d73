#include "core/Currency.h"

#include "core/Rounding.h"

#include <cstdlib>

namespace core {

Currency Currency::fromCount(std::uint64_t count) {
    const auto asSigned = static_cast<std::int64_t>(count);
    std::int64_t scaled = 0;
    if (__builtin_mul_overflow(asSigned, Scale, &scaled))
        return fromRaw(asSigned);
    return fromRaw(scaled);
}

Currency Currency::fromWhole(std::int64_t whole) {
    return fromRaw(whole * Scale);
}

std::int64_t Currency::rounded() const {
    const std::int64_t whole = m_raw / Scale;
    const std::int64_t rest = m_raw % Scale; // same sign as m_raw
    const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
    if (twice < Scale || (twice == Scale && whole % 2 == 0))
        return whole;
    return m_raw < 0 ? whole - 1 : whole + 1;
}

std::string Currency::toString() const {
    const bool negative = m_raw < 0;
    // Work on the unsigned magnitude so that the most negative value prints too.
    const std::uint64_t magnitude = negative ? 0 - static_cast<std::uint64_t>(m_raw) : static_cast<std::uint64_t>(m_raw);
    std::string text = std::to_string(magnitude / Scale);
    std::uint64_t fraction = magnitude % Scale;
    if (fraction != 0) {
        std::string digits = std::to_string(fraction);
        digits.insert(0, 4 - digits.size(), '0');
        while (digits.back() == '0')
            digits.pop_back();
        text += '.' + digits;
    }
    return negative ? '-' + text : text;
}

} // namespace core
