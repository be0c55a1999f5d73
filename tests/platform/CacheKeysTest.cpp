// The cache key readers on hand-made bytes: what real files cannot easily show (truncation,
// damage, escaped tags).

#include "browsers/CacheKeys.h"
#include "tests/platform/BrowserHome.h"

#include <gtest/gtest.h>

using namespace browsers;
using testsupport::cache2Metadata;
using testsupport::simpleCacheHead;

TEST(CacheKeys, SimpleCacheKeyAndAddress) {
    const std::string key = "1/0/_dk_http://a.test http://a.test http://a.test/page?x=1";
    const std::string head = simpleCacheHead(key) + "stream data";
    ASSERT_EQ(simpleCacheKey(head), key);
    EXPECT_EQ(simpleCacheAddress(key), "http://a.test/page?x=1");

    std::size_t needed = 0;
    EXPECT_FALSE(simpleCacheKey(head.substr(0, 30), &needed));
    EXPECT_EQ(needed, 24 + key.size());
    EXPECT_FALSE(simpleCacheKey(head.substr(0, 10), &needed));
    EXPECT_EQ(needed, 24u);

    std::string damaged = head;
    damaged[0] ^= 1;
    EXPECT_FALSE(simpleCacheKey(damaged, &needed));
    EXPECT_EQ(needed, 0u);
    EXPECT_FALSE(simpleCacheKey(simpleCacheHead(key, 4)));
    // A key length far beyond any file is damage, not a reason to read on.
    std::string huge = head;
    huge.replace(12, 4, "\xf0\xff\xff\xff");
    EXPECT_FALSE(simpleCacheKey(huge, &needed));
    EXPECT_EQ(needed, 0u);
}

TEST(CacheKeys, Cache2KeyFromMetadataWithChunkHashes) {
    for (std::uint32_t dataSize : {0u, 262144u, 262145u}) {
        const std::string key = "O^partitionKey=%28http%2Ca.test%29,a,:http://a.test/x";
        const std::string meta = cache2Metadata(dataSize, key);
        const std::string file = std::string(dataSize, 'd') + meta;
        const auto offset = cache2MetadataOffset(file.substr(file.size() - 4), file.size());
        ASSERT_EQ(offset, dataSize);
        EXPECT_EQ(cache2Key(std::string_view(file).substr(*offset), *offset), key) << dataSize;
        std::size_t needed = 0;
        EXPECT_FALSE(cache2Key(std::string_view(meta).substr(0, cache2KeyHeaderSize(dataSize) + 3), dataSize, &needed));
        EXPECT_EQ(needed, cache2KeyHeaderSize(dataSize) + key.size() + 1);
    }
    // An offset that leaves no room for metadata, a key without its terminating zero, a version
    // that is not cache2's.
    EXPECT_FALSE(cache2MetadataOffset(std::string("\0\0\0\x64", 4), 60));
    std::string meta = cache2Metadata(0, "a,:http://a.test/");
    std::string unterminated = meta;
    unterminated[cache2KeyHeaderSize(0) + 17] = 'x';
    EXPECT_FALSE(cache2Key(unterminated, 0));
    EXPECT_FALSE(cache2Key(cache2Metadata(0, "a,:http://a.test/", 77), 0));
}

TEST(CacheKeys, Cache2AddressFollowsTheTags) {
    EXPECT_EQ(cache2Address("O^partitionKey=%28http%2Ca.test%29,a,:http://a.test/p:1"), "http://a.test/p:1");
    EXPECT_EQ(cache2Address("~12,,34,:http://a.test/"), "http://a.test/"); // a doubled comma is part of the value
    EXPECT_FALSE(cache2Address("a,http://a.test/"));
    EXPECT_FALSE(cache2Address("O^unterminated"));
}
