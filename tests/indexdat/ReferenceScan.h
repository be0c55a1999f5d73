#pragma once
// The byte-by-byte loop the activity scan replaces, kept as the reference both the scan's tests
// and its fuzz program hold it against: three probes a position, the end-of-file flag set by the
// last read of a round when it ran past the end (an empty file is at its end at once), entries
// zero-filled beyond the end and cut at their first zero.

#include "indexdat/ActivityScan.h"

#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// The entries the loop lists for a file holding `data`, in file order.
inline std::vector<std::string> referenceScan(std::string_view data) {
    std::vector<std::string> out;
    const std::size_t length = data.size();
    bool eof = length == 0;
    std::size_t p = 0;
    auto probe = [&](std::string_view marker) {
        eof = p + marker.size() > length;
        return !eof && data.substr(p, marker.size()) == marker;
    };
    auto entry = [&] {
        eof = p + indexdat::EntryLength > length;
        const std::string_view bytes = data.substr(p, indexdat::EntryLength);
        out.emplace_back(bytes.substr(0, bytes.find('\0')));
    };
    while (!eof) {
        if (probe("http://"))
            entry();
        if (probe("ftp://"))
            entry();
        if (probe("Cookie:"))
            entry();
        ++p;
    }
    return out;
}

} // namespace testsupport
