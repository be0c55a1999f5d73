#pragma once
// One entry of the browser's URL history: a copy of the record the store's enumerator delivered.
// Only CURLHistory fills items. The date properties convert the stored UTC time to local time in
// place, writing the converted value back into the record, so that each further read of the same
// property moves it once more by the local offset from UTC: only the first read of each date gives
// the true local time. Callers that need a date twice keep the first value.

#include "platform/UrlHistory.h"

#include <cstdint>
#include <string>

namespace cleaning {

/// A date as days since 1899-12-30 00:00, the time of day as the fraction (6:00 is .25). Days
/// before that day count down from -1 while their fraction still counts the time of day, so
/// 1899-12-29 06:00 is -1.25.
using VariantDate = double;

class URLHistoryItem {
public:
    /// `ftLastVisited` as local date and time; the conversion is written back into the record.
    VariantDate LastVisited();
    /// `ftExpires` as local date and time; written back likewise.
    VariantDate Expires();
    /// `ftLastUpdated` as local date and time; written back likewise.
    VariantDate LastUpdated();
    /// The address.
    std::string URL() const;
    /// The store's entry flags.
    std::int32_t flags() const;
    /// The page title, or "     (No Title Given)" when it has none.
    std::string Title() const;

    /// The text Title gives for an entry without a title (five leading blanks, kept as they are).
    static const std::string NoTitle;

    /// The date value of a file time as it stands (no conversion), whole milliseconds dropped
    /// the way the system's date conversion drops them. 0 for a time outside the date range.
    static VariantDate toVariantDate(const platform::FileTime& time);

private:
    friend class CURLHistory;
    URLHistoryItem() = default;
    /// The initialiser only the collection calls: keeps a copy of the record.
    void Init(const platform::StatUrl& record) { m_record = record; }
    VariantDate localDate(platform::FileTime& field);

    platform::StatUrl m_record;
};

} // namespace cleaning
