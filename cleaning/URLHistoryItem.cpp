#include "cleaning/URLHistoryItem.h"

#include "platform/LocalTime.h"

#include <cmath>

namespace cleaning {

const std::string URLHistoryItem::NoTitle = "     (No Title Given)";

namespace {

constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsPerDay = 86'400;
/// Days from 1601-01-01, where file times count from, to 1899-12-30, where dates count from.
constexpr std::int64_t DaysFrom1601To1899 = 109'205;
/// The last moment a date can hold: 9999-12-31 23:59:59, in seconds since 1601.
constexpr std::int64_t LastDateSecond = (2'958'465 + DaysFrom1601To1899 + 1) * SecondsPerDay - 1;

} // namespace

VariantDate URLHistoryItem::toVariantDate(const platform::FileTime& time) {
    const std::uint64_t ticks = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    // The system's conversions go through whole seconds: milliseconds are dropped on the way.
    const auto seconds = static_cast<std::int64_t>(ticks / TicksPerSecond);
    if (ticks > static_cast<std::uint64_t>(INT64_MAX) || seconds > LastDateSecond)
        return 0;
    const std::int64_t fromBase = seconds - DaysFrom1601To1899 * SecondsPerDay;
    const std::int64_t day = fromBase >= 0 ? fromBase / SecondsPerDay : -((-fromBase + SecondsPerDay - 1) / SecondsPerDay);
    const double timeOfDay = static_cast<double>(fromBase - day * SecondsPerDay) / SecondsPerDay;
    return day >= 0 ? static_cast<double>(day) + timeOfDay : static_cast<double>(day) - timeOfDay;
}

VariantDate URLHistoryItem::localDate(platform::FileTime& field) {
    // Written back on purpose: the record keeps the converted value (see the header).
    platform::fileTimeToLocalFileTime(field, field);
    return toVariantDate(field);
}

VariantDate URLHistoryItem::LastVisited() {
    return localDate(m_record.ftLastVisited);
}

VariantDate URLHistoryItem::Expires() {
    return localDate(m_record.ftExpires);
}

VariantDate URLHistoryItem::LastUpdated() {
    return localDate(m_record.ftLastUpdated);
}

std::string URLHistoryItem::URL() const {
    return m_record.pwcsUrl;
}

std::int32_t URLHistoryItem::flags() const {
    return static_cast<std::int32_t>(m_record.dwFlags);
}

std::string URLHistoryItem::Title() const {
    return m_record.pwcsTitle.empty() ? NoTitle : m_record.pwcsTitle;
}

} // namespace cleaning
