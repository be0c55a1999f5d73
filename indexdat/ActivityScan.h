#pragma once
// The activity scan: every recorded web address ("http://"), file-transfer address ("ftp://") and
// cookie entry ("Cookie:") in a record file, found wherever the marker stands, also inside longer
// texts and overlapping other hits. The file is treated as plain bytes; no header or record layout
// is read, so deleted records whose text remains are found too.
//
// The list is exactly the one the window's historical byte-by-byte loop gives (three probes at each
// position, the end-of-file flag tested once per round), but found with a fast search for the ':'
// every marker holds, over a buffered file. What that loop's end-of-file rules come to:
// - every marker that lies wholly inside the file is found, in file order, including an "ftp://"
//   in the last six bytes;
// - an entry is the 150 bytes starting at the marker, cut at the first zero byte or at the end of
//   the file;
// - a "Cookie:" less than 150 bytes before the end is the last hit: the loop stopped after it.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace platform {
class RawFile;
class RawFiles;
} // namespace platform

namespace indexdat {

/// The longest an activity entry gets, in bytes.
constexpr std::size_t EntryLength = 150;

class ActivityScan {
public:
    /// Receives each entry in file order (bytes as stored); returns false to end the scan.
    using Visit = std::function<bool(std::string_view entry)>;

    explicit ActivityScan(platform::RawFiles& files) : m_files(files) {}

    /// Scans the file at `path`. False when it cannot be opened (entries are then not reported);
    /// a read that fails midway ends the scan like the end of the file.
    bool scan(const std::string& path, const Visit& visit);

    /// Scans an open file from its current position to its end.
    static void scan(platform::RawFile& file, const Visit& visit);

private:
    platform::RawFiles& m_files;
};

} // namespace indexdat
