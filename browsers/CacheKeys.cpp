#include "browsers/CacheKeys.h"

#include <algorithm>
#include <cstring>

namespace browsers {
namespace {

// Most keys fit in the first read; a longer one costs a second read.
constexpr std::size_t kFirstRead = 512;
// A Firefox entry up to this size is read whole: one read instead of two.
constexpr std::uint64_t kWholeRead = 16 * 1024;

constexpr std::uint64_t kSimpleInitialMagic = 0xfcfb6d1ba7725c30ULL;
// Entry files of versions 5 to 9 share this header; older ones are long gone from disks.
constexpr std::uint32_t kSimpleMinVersion = 5;
constexpr std::uint32_t kSimpleMaxVersion = 9;
// Keys longer than this are not written by the browser; a larger length means a damaged file.
constexpr std::uint32_t kMaxKeyLength = 1u << 20;

constexpr std::uint32_t kChunkSize = 256 * 1024;
// The metadata header fields: version, fetch count, last fetched, last modified, frecency,
// expiration time, key size, flags.
constexpr std::size_t kCache2HeaderFields = 8;
constexpr std::uint32_t kCache2MinVersion = 2;
constexpr std::uint32_t kCache2MaxVersion = 9;

std::uint32_t littleEndian32(const char* p) {
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    return std::uint32_t(b[0]) | std::uint32_t(b[1]) << 8 | std::uint32_t(b[2]) << 16 | std::uint32_t(b[3]) << 24;
}

std::uint64_t littleEndian64(const char* p) {
    return std::uint64_t(littleEndian32(p)) | std::uint64_t(littleEndian32(p + 4)) << 32;
}

std::uint32_t bigEndian32(const char* p) {
    const auto* b = reinterpret_cast<const unsigned char*>(p);
    return std::uint32_t(b[0]) << 24 | std::uint32_t(b[1]) << 16 | std::uint32_t(b[2]) << 8 | std::uint32_t(b[3]);
}

std::size_t hashBytes(std::uint32_t metadataOffset) {
    // One 16-bit hash per started chunk of data.
    const std::uint64_t chunks = (std::uint64_t(metadataOffset) + kChunkSize - 1) / kChunkSize;
    return static_cast<std::size_t>(chunks * 2);
}

} // namespace

std::optional<std::string_view> simpleCacheKey(std::string_view head, std::size_t* needed) {
    if (needed)
        *needed = 0;
    if (head.size() < kSimpleCacheHeaderSize) {
        if (needed)
            *needed = kSimpleCacheHeaderSize;
        return std::nullopt;
    }
    const std::uint32_t version = littleEndian32(head.data() + 8);
    const std::uint32_t keyLength = littleEndian32(head.data() + 12);
    if (littleEndian64(head.data()) != kSimpleInitialMagic || version < kSimpleMinVersion ||
        version > kSimpleMaxVersion || keyLength == 0 || keyLength > kMaxKeyLength)
        return std::nullopt;
    if (head.size() - kSimpleCacheHeaderSize < keyLength) {
        if (needed)
            *needed = kSimpleCacheHeaderSize + keyLength;
        return std::nullopt;
    }
    return head.substr(kSimpleCacheHeaderSize, keyLength);
}

std::string_view simpleCacheAddress(std::string_view key) {
    const auto blank = key.find_last_of(' ');
    return blank == std::string_view::npos ? key : key.substr(blank + 1);
}

std::optional<std::uint32_t> cache2MetadataOffset(std::string_view lastFour, std::uint64_t fileSize) {
    if (lastFour.size() != 4 || fileSize < 4)
        return std::nullopt;
    const std::uint32_t offset = bigEndian32(lastFour.data());
    // Hash of the metadata, chunk hashes, header and the key's terminating zero must fit.
    const std::uint64_t least = std::uint64_t(offset) + 4 + hashBytes(offset) + kCache2HeaderFields * 4 + 1 + 4;
    if (least > fileSize)
        return std::nullopt;
    return offset;
}

std::size_t cache2KeyHeaderSize(std::uint32_t metadataOffset) {
    return 4 + hashBytes(metadataOffset) + kCache2HeaderFields * 4;
}

std::optional<std::string_view> cache2Key(std::string_view metadata, std::uint32_t metadataOffset,
                                          std::size_t* needed) {
    if (needed)
        *needed = 0;
    const std::size_t header = 4 + hashBytes(metadataOffset);
    const std::size_t keyStart = cache2KeyHeaderSize(metadataOffset);
    if (metadata.size() < keyStart) {
        if (needed)
            *needed = keyStart;
        return std::nullopt;
    }
    const std::uint32_t version = bigEndian32(metadata.data() + header);
    const std::uint32_t keySize = bigEndian32(metadata.data() + header + 6 * 4);
    if (version < kCache2MinVersion || version > kCache2MaxVersion || keySize == 0 || keySize > kMaxKeyLength)
        return std::nullopt;
    if (metadata.size() - keyStart < std::size_t(keySize) + 1) {
        if (needed)
            *needed = keyStart + keySize + 1;
        return std::nullopt;
    }
    if (metadata[keyStart + keySize] != '\0')
        return std::nullopt;
    return metadata.substr(keyStart, keySize);
}

std::optional<std::string_view> cache2Address(std::string_view key) {
    std::size_t pos = 0;
    while (pos < key.size()) {
        if (key[pos] == ':')
            return key.substr(pos + 1);
        // A tag runs to the next lone comma; a doubled comma stands for a comma inside its value.
        std::size_t end = pos + 1;
        for (;;) {
            end = key.find(',', end);
            if (end == std::string_view::npos)
                return std::nullopt;
            if (end + 1 < key.size() && key[end + 1] == ',') {
                end += 2;
                continue;
            }
            break;
        }
        pos = end + 1;
    }
    return std::nullopt;
}

std::optional<std::string> simpleCacheEntryAddress(const ReadAt& read, std::uint64_t size) {
    std::string head;
    read(head, static_cast<std::size_t>(std::min<std::uint64_t>(size, kFirstRead)), 0);
    std::size_t needed = 0;
    auto key = simpleCacheKey(head, &needed);
    if (!key && needed > head.size() && needed <= size && read(head, needed, 0))
        key = simpleCacheKey(head);
    if (!key)
        return std::nullopt;
    return std::string(simpleCacheAddress(*key));
}

std::optional<std::string> cache2EntryAddress(const ReadAt& read, std::uint64_t size) {
    std::string bytes;
    std::uint64_t base = 0; // file offset of bytes[0]
    if (size <= kWholeRead) {
        if (!read(bytes, static_cast<std::size_t>(size), 0))
            return std::nullopt;
    } else if (!read(bytes, 4, size - 4)) {
        return std::nullopt;
    } else {
        base = size - 4;
    }
    if (bytes.size() < 4)
        return std::nullopt; // cut short before the metadata offset at its end
    const auto offset = cache2MetadataOffset(std::string_view(bytes).substr(bytes.size() - 4), size);
    if (!offset)
        return std::nullopt;
    std::string_view metadata;
    if (base == 0) {
        metadata = std::string_view(bytes).substr(*offset);
    } else {
        const std::size_t first = static_cast<std::size_t>(
            std::min<std::uint64_t>(size - *offset, cache2KeyHeaderSize(*offset) + kFirstRead));
        if (!read(bytes, first, *offset))
            return std::nullopt;
        metadata = bytes;
    }
    std::size_t needed = 0;
    auto key = cache2Key(metadata, *offset, &needed);
    if (!key && base != 0 && needed > metadata.size() && needed <= size - *offset && read(bytes, needed, *offset))
        key = cache2Key(bytes, *offset);
    if (!key)
        return std::nullopt;
    const auto address = cache2Address(*key);
    return address ? std::optional<std::string>(std::string(*address)) : std::nullopt;
}

} // namespace browsers
