// The 35-pass table, the random draws, the 16-bit block form and the pass line of the file wipe.

#include "wipe/Gutmann.h"
#include "wipe/SecureDelete.h"

#include <gtest/gtest.h>

#include <set>

using wipe::Gutmann;

TEST(Gutmann, FixedPassesFollowTheTable) {
    wipe::PatternRandom random(1);
    EXPECT_EQ(Gutmann::values(5, random), (Gutmann::Values{0x55, 0x55, 0x55}));
    EXPECT_EQ(Gutmann::values(8, random), (Gutmann::Values{0x49, 0x24, 0x92}));
    EXPECT_EQ(Gutmann::values(10, random), (Gutmann::Values{0x00, 0x00, 0x00}));
    for (int pass = 11; pass <= 25; ++pass) // 0x11 to 0xFF in steps of 0x11
        EXPECT_EQ(Gutmann::values(pass, random)[1], (pass - 10) * 0x11) << "pass " << pass;
    EXPECT_EQ(Gutmann::values(28, random), (Gutmann::Values{0x24, 0x92, 0x49}));
    EXPECT_EQ(Gutmann::values(31, random), (Gutmann::Values{0xDB, 0x6D, 0xB6}));
    for (int pass = 5; pass <= 31; ++pass)
        EXPECT_FALSE(Gutmann::isRandom(pass));
}

TEST(Gutmann, RandomPassesDrawThreeValuesThatCoverTheByteRange) {
    for (int pass : {1, 2, 3, 4, 32, 33, 34, 35})
        EXPECT_TRUE(Gutmann::isRandom(pass));
    wipe::PatternRandom a(7), b(7);
    std::set<int> seen;
    for (int i = 0; i < 2000; ++i) {
        const auto v = Gutmann::values(1, a);
        EXPECT_EQ(v, Gutmann::values(33, b)); // the same state gives the same draws
        seen.insert(v.begin(), v.end());
    }
    EXPECT_GT(seen.size(), 250u);
    EXPECT_TRUE(seen.count(0) && seen.count(255));
    // Reseeding with different numbers leads to different sequences.
    a.reseed(0.5);
    b.reseed(-0.75);
    EXPECT_NE(a.next(), b.next());
}

TEST(Gutmann, WideBlocksAreAnsiCharactersInTheirUtf16Form) {
    EXPECT_EQ(Gutmann::wideBlock(0x55, 3), (std::vector<std::uint8_t>{0x55, 0, 0x55, 0, 0x55, 0}));
    EXPECT_EQ(Gutmann::wideBlock(0x92, 2), (std::vector<std::uint8_t>{0x19, 0x20, 0x19, 0x20})); // U+2019
    EXPECT_EQ(Gutmann::wideBlock(0xDB, 1), (std::vector<std::uint8_t>{0xDB, 0x00}));
    EXPECT_EQ(Gutmann::ansiToUtf16(0x80), 0x20AC);
    EXPECT_EQ(Gutmann::ansiToUtf16(0x81), 0x0081); // undefined in the code page: kept
    EXPECT_EQ(Gutmann::ansiToUtf16(0x9F), 0x0178);
    EXPECT_EQ(Gutmann::ansiToUtf16(0xA0), 0x00A0);
    EXPECT_TRUE(Gutmann::wideBlock(0x11, 0).empty());
}

TEST(Gutmann, PassLineShowsTheFirstValueAsTheCodeOfItsFirstDigit) {
    EXPECT_EQ(wipe::SecureDelete::passText({0x92, 0x49, 0x24}), "Block1: 0x31 , Block2: 0x49 , Block3: 0x24");
    EXPECT_EQ(wipe::SecureDelete::passText({0x55, 0x55, 0x55}), "Block1: 0x38 , Block2: 0x55 , Block3: 0x55");
    EXPECT_EQ(wipe::SecureDelete::passText({0x00, 0x00, 0x0A}), "Block1: 0x30 , Block2: 0x00 , Block3: 0x0A");
}
