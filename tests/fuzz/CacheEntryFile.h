#pragma once
// An entry file of a browser's disk cache held in memory, read the way the cache reader reads a
// real one: a few bytes at chosen offsets.

#include "browsers/CacheKeys.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzzcache {

/// Reads `file` as pread() would: fewer bytes than asked at its end.
inline browsers::ReadAt readerOf(std::string_view file) {
    return [file](std::string& buf, std::size_t length, std::uint64_t offset) {
        const std::size_t from = static_cast<std::size_t>(std::min<std::uint64_t>(offset, file.size()));
        buf.assign(file.substr(from, length));
        return buf.size() == length;
    };
}

} // namespace fuzzcache
