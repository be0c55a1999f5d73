// The cache key readers on hand-made bytes. Real entries are read in the URL cache's tests, and the
// readers' fuzzers check that reading a file's head or end gives what the whole file gives; these
// are the refusals and tags no real file shows.

#include "browsers/CacheKeys.h"
#include "tests/platform/BrowserHome.h"

#include <gtest/gtest.h>

using namespace browsers;
using testsupport::cache2Metadata;
using testsupport::simpleCacheHead;

TEST(CacheKeys, SimpleCacheKeysOfAnotherVersionOrDamagedAreRefused) {
    const std::string key = "1/0/_dk_http://a.test http://a.test http://a.test/page?x=1";
    const std::string head = simpleCacheHead(key) + "stream data";
    ASSERT_EQ(simpleCacheKey(head), key);
    EXPECT_EQ(simpleCacheAddress(key), "http://a.test/page?x=1");
    EXPECT_FALSE(simpleCacheKey(simpleCacheHead(key, 4)));
    std::string damaged = head;
    damaged[0] ^= 1;
    std::size_t needed = 1;
    EXPECT_FALSE(simpleCacheKey(damaged, &needed));
    EXPECT_EQ(needed, 0u);
    // A key length far beyond any file is damage, not a reason to read on.
    std::string huge = head;
    huge.replace(12, 4, "\xf0\xff\xff\xff");
    EXPECT_FALSE(simpleCacheKey(huge, &needed));
    EXPECT_EQ(needed, 0u);
}

TEST(CacheKeys, Cache2KeysOfAnotherVersionOrUnterminatedAreRefusedAndAddressesFollowTheTags) {
    // An offset that leaves no room for metadata, a key without its terminating zero, a version
    // that is not cache2's.
    EXPECT_FALSE(cache2MetadataOffset(std::string("\0\0\0\x64", 4), 60));
    std::string unterminated = cache2Metadata(0, "a,:http://a.test/");
    unterminated[cache2KeyHeaderSize(0) + 17] = 'x';
    EXPECT_FALSE(cache2Key(unterminated, 0));
    EXPECT_FALSE(cache2Key(cache2Metadata(0, "a,:http://a.test/", 77), 0));

    EXPECT_EQ(cache2Address("O^partitionKey=%28http%2Ca.test%29,a,:http://a.test/p:1"), "http://a.test/p:1");
    EXPECT_EQ(cache2Address("~12,,34,:http://a.test/"), "http://a.test/"); // a doubled comma is part of the value
    EXPECT_FALSE(cache2Address("a,http://a.test/"));
    EXPECT_FALSE(cache2Address("O^unterminated"));
}
