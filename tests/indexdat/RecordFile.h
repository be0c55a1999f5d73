#pragma once
// Record files for tests, in the layout the browser writes them: the "Client UrlCache MMF Ver 5.2"
// header with its allocation bitmap, 128-byte blocks from 0x4000, a HASH table pointing at the
// records, "URL " records whose location is an address behind a prefix ("Visited: user@http://...",
// ":2026112220261123: user@http://...", "Cookie:user@host/"), and deleted records whose text is
// still there although no table points at them.

#include <cstdint>
#include <string>
#include <vector>

namespace testsupport {

class RecordFile {
public:
    /// Adds a live "URL " record with this location (listed in the hash table).
    RecordFile& url(const std::string& location);
    /// Adds a deleted record: its blocks are free and no table points at it, but its text remains.
    RecordFile& deleted(const std::string& location);
    /// The file's bytes.
    std::string bytes() const;
    /// The locations added, live and deleted, in file order.
    const std::vector<std::string>& locations() const { return m_locations; }

private:
    struct Record {
        std::string location;
        bool live;
    };
    std::vector<Record> m_records;
    std::vector<std::string> m_locations;
};

} // namespace testsupport
