#include "tests/indexdat/RecordFile.h"

#include <cstring>

namespace testsupport {
namespace {

constexpr std::size_t BlockSize = 128;
constexpr std::size_t FirstBlock = 0x4000;
constexpr std::size_t BitmapOffset = 0x250;
constexpr std::size_t HashBlocks = 32;       // a 4 KiB hash table
constexpr std::size_t LocationAt = 0x68;     // where a version 5.2 URL record keeps its location

void put32(std::string& b, std::size_t at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        b[at + i] = static_cast<char>((v >> (8 * i)) & 0xff);
}

void put64(std::string& b, std::size_t at, std::uint64_t v) {
    put32(b, at, static_cast<std::uint32_t>(v));
    put32(b, at + 4, static_cast<std::uint32_t>(v >> 32));
}

std::size_t blocksFor(std::size_t bytes) {
    return (bytes + BlockSize - 1) / BlockSize;
}

} // namespace

RecordFile& RecordFile::url(const std::string& location) {
    m_records.push_back({location, true});
    m_locations.push_back(location);
    return *this;
}

RecordFile& RecordFile::deleted(const std::string& location) {
    m_records.push_back({location, false});
    m_locations.push_back(location);
    return *this;
}

std::string RecordFile::bytes() const {
    std::vector<std::size_t> recordBlocks;
    std::size_t used = HashBlocks;
    for (const Record& r : m_records) {
        recordBlocks.push_back(blocksFor(LocationAt + r.location.size() + 1 + 8));
        used += recordBlocks.back();
    }
    const std::size_t totalBlocks = ((used + 255) / 256) * 256; // the file grows in 32 KiB steps
    std::string b(FirstBlock + totalBlocks * BlockSize, '\0');

    std::memcpy(b.data(), "Client UrlCache MMF Ver 5.2", 28);
    put32(b, 0x1c, static_cast<std::uint32_t>(b.size()));
    put32(b, 0x20, FirstBlock);
    put32(b, 0x24, static_cast<std::uint32_t>(totalBlocks));
    std::size_t allocated = 0;
    put64(b, 0x30, 0x02000000); // cache limit
    put32(b, 0x48, 1);          // one cache folder
    std::memcpy(b.data() + 0x50, "ABCDEFGH", 8);

    auto allocate = [&](std::size_t first, std::size_t count) {
        for (std::size_t i = first; i < first + count; ++i)
            b[BitmapOffset + i / 8] = static_cast<char>(b[BitmapOffset + i / 8] | (1 << (i % 8)));
        allocated += count;
    };

    // The hash table: unused entries hold 3, used ones a hash and the record's offset.
    std::memcpy(b.data() + FirstBlock, "HASH", 4);
    put32(b, FirstBlock + 4, HashBlocks);
    const std::size_t entries = (HashBlocks * BlockSize - 16) / 8;
    for (std::size_t i = 0; i < entries; ++i) {
        put32(b, FirstBlock + 16 + 8 * i, 3);
        put32(b, FirstBlock + 16 + 8 * i + 4, 3);
    }
    allocate(0, HashBlocks);

    std::size_t block = HashBlocks;
    std::size_t slot = 0;
    for (std::size_t n = 0; n < m_records.size(); ++n) {
        const Record& r = m_records[n];
        const std::size_t at = FirstBlock + block * BlockSize;
        const std::size_t size = recordBlocks[n] * BlockSize;
        // Unused bytes of a record read 0x0BADF00D, as the browser leaves them.
        for (std::size_t i = 0; i + 4 <= size; i += 4)
            put32(b, at + i, 0x0BADF00D);
        std::memcpy(b.data() + at, "URL ", 4);
        put32(b, at + 4, static_cast<std::uint32_t>(recordBlocks[n]));
        put64(b, at + 8, 0x01DD5C3A8F2B0000ull + n);  // last modified
        put64(b, at + 0x10, 0x01DD5C3A8F2B0000ull + n); // last visited
        for (std::size_t i = 0x18; i < LocationAt; i += 4)
            put32(b, at + i, 0);
        put32(b, at + 0x34, LocationAt);
        b[at + 0x38] = static_cast<char>(0xfe); // no cache folder: a history record
        put32(b, at + 0x54, 1);                 // hits
        std::memcpy(b.data() + at + LocationAt, r.location.c_str(), r.location.size() + 1);
        if (r.live) {
            allocate(block, recordBlocks[n]);
            put32(b, FirstBlock + 16 + 8 * slot, 0x1000 + static_cast<std::uint32_t>(n) * 0x40);
            put32(b, FirstBlock + 16 + 8 * slot + 4, static_cast<std::uint32_t>(at));
            ++slot;
        }
        block += recordBlocks[n];
    }
    put32(b, 0x28, static_cast<std::uint32_t>(allocated));
    return b;
}

} // namespace testsupport
