#pragma once
// The keys of browser disk-cache entries, read from raw file bytes: pure functions, bytes in and
// address out, so that they can be tried on any input. Two formats:
// - Chromium's simple cache: each entry's "_0" file starts with a 24-byte header (magic, version,
//   key length, key hash) followed by the key. With split caching the key carries the isolation
//   parts first ("1/0/_dk_http://a http://a http://a/page"); the address is its last part.
// - Firefox's cache2: the data comes first, then the metadata, and the file's last four bytes (big
//   endian) give where the metadata starts. The metadata holds a hash of itself, one 16-bit hash per
//   256 KiB chunk of data, a header of 32-bit fields and then the key. The key is a list of tags
//   ("a," anonymous, "O^...," origin attributes, ...) ended by ':' and followed by the address.
// An entry file is read through a reader handed in, a few bytes at chosen offsets, so the same
// code serves a file on disk and bytes in memory.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace browsers {

/// Bytes of the head of a simple-cache file that hold its header.
constexpr std::size_t kSimpleCacheHeaderSize = 24;

/// The key of a simple-cache entry from the first bytes of its "_0" file. Empty when `head` is not
/// such a file, or when it is too short to hold the whole key: then `needed` (if given) is set to
/// the number of head bytes that would hold it (0 when no length can help).
std::optional<std::string_view> simpleCacheKey(std::string_view head, std::size_t* needed = nullptr);

/// The source address in a simple-cache key: its last blank-separated part.
std::string_view simpleCacheAddress(std::string_view key);

/// Where the metadata of a cache2 entry file starts, from the file's last four bytes; empty when
/// that offset cannot be right for a file of `fileSize` bytes.
std::optional<std::uint32_t> cache2MetadataOffset(std::string_view lastFour, std::uint64_t fileSize);

/// Bytes of metadata, from its start, that hold the key when its length is unknown yet.
std::size_t cache2KeyHeaderSize(std::uint32_t metadataOffset);

/// The key of a cache2 entry from its metadata bytes (from the metadata offset on, as many as
/// read). Empty when they are not cache2 metadata or too short: then `needed` (if given) is set to
/// the number of metadata bytes that would hold the key (0 when no length can help).
std::optional<std::string_view> cache2Key(std::string_view metadata, std::uint32_t metadataOffset,
                                          std::size_t* needed = nullptr);

/// The source address in a cache2 key: what follows its tags; empty when the tags are malformed.
std::optional<std::string_view> cache2Address(std::string_view key);

/// Reads `length` bytes at `offset` of an entry file into `buf` (resized to what was read); false
/// when fewer were there.
using ReadAt = std::function<bool(std::string& buf, std::size_t length, std::uint64_t offset)>;

/// The source address of a simple-cache "_0" file of `size` bytes, reading only the bytes that hold
/// its key through `read`; empty when the file holds none.
std::optional<std::string> simpleCacheEntryAddress(const ReadAt& read, std::uint64_t size);
/// The same for a cache2 entry file.
std::optional<std::string> cache2EntryAddress(const ReadAt& read, std::uint64_t size);

} // namespace browsers
