#include "core/Currency.h"
#include "core/NumberFormat.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <limits>

using core::Currency;

TEST(Currency, ScalesCountsWhileTheyFitAndPrintsPlainDecimals) {
    EXPECT_EQ(Currency::fromCount(4294967296ull).toString(), "4294967296");
    // The largest count that still scales, and the first that does not: kept unscaled.
    const std::uint64_t limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / 10000;
    EXPECT_EQ(Currency::fromCount(limit).raw(), static_cast<std::int64_t>(limit) * 10000);
    EXPECT_EQ(Currency::fromCount(limit + 1).toString(), "92233720368.5478");
    EXPECT_EQ(Currency::fromRaw(1).toString(), "0.0001");
    EXPECT_EQ(Currency::fromRaw(std::numeric_limits<std::int64_t>::min()).toString(), "-922337203685477.5808");
    EXPECT_EQ(Currency::fromRaw(35000).rounded(), 4);
    EXPECT_EQ(Currency::fromRaw(-25001).rounded(), -3);
}

TEST(NumberFormat, GroupsThousandsWithTheLocaleSeparator) {
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(core::formatGrouped(std::int64_t{-1234567}), "-1,234,567");
    // Longer than the pattern: every digit is kept.
    EXPECT_EQ(core::formatGrouped(std::int64_t{123456789012345}), "123,456,789,012,345");
    EXPECT_EQ(core::formatGrouped(Currency::fromRaw(12345000)), "1,234"); // 1234.5 -> 1234
    EXPECT_EQ(core::formatGrouped(2501.5), "2,502");
}
