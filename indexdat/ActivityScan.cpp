#include "indexdat/ActivityScan.h"

#include "platform/RawFiles.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace indexdat {
namespace {

constexpr std::string_view Http = "http://";
constexpr std::string_view Ftp = "ftp://";
constexpr std::string_view Cookie = "Cookie:";

// Every marker holds a ':' at a fixed distance from its start; a hit is found from its colon.
constexpr std::size_t HttpColon = 4;
constexpr std::size_t FtpColon = 3;
constexpr std::size_t CookieColon = 6;
// A colon's hit starts at most this many bytes before it, and its entry ends at most this many
// bytes after it: the buffer must hold that much around a colon before it is looked at.
constexpr std::size_t Before = CookieColon;
constexpr std::size_t After = EntryLength - FtpColon;

constexpr std::size_t ChunkSize = std::size_t{1} << 20;

bool startsAt(const char* begin, const char* end, const char* at, std::string_view marker) {
    return at >= begin && static_cast<std::size_t>(end - at) >= marker.size() &&
           std::memcmp(at, marker.data(), marker.size()) == 0;
}

} // namespace

void ActivityScan::scan(platform::RawFile& file, const Visit& visit) {
    // buffer[0] holds the byte at file offset `base`; colons before offset `next` are done.
    std::vector<char> buffer(ChunkSize + Before + After);
    std::uint64_t base = 0;
    std::uint64_t next = 0;
    std::size_t held = 0;
    bool atEnd = false;
    while (!atEnd) {
        const std::size_t want = buffer.size() - held;
        const std::size_t got = file.read(buffer.data() + held, want);
        atEnd = got < want;
        held += got;

        const char* begin = buffer.data();
        const char* end = begin + held;
        // Until the end of the file is in the buffer, a colon needs its whole entry behind it.
        const char* limit = atEnd ? end : (held > After ? end - After : begin);
        const char* from = begin + (next - base);
        while (from < limit) {
            const auto* colon = static_cast<const char*>(std::memchr(from, ':', limit - from));
            if (!colon)
                break;
            from = colon + 1;
            const char* hit = nullptr;
            bool last = false;
            if (startsAt(begin, end, colon - HttpColon, Http))
                hit = colon - HttpColon;
            else if (startsAt(begin, end, colon - FtpColon, Ftp))
                hit = colon - FtpColon;
            else if (startsAt(begin, end, colon - CookieColon, Cookie)) {
                hit = colon - CookieColon;
                // The loop's last read of this round ran past the end: it stopped here.
                last = static_cast<std::size_t>(end - hit) < EntryLength && atEnd;
            } else
                continue;
            const std::size_t room = std::min<std::size_t>(EntryLength, end - hit);
            const auto* zero = static_cast<const char*>(std::memchr(hit, 0, room));
            if (!visit(std::string_view(hit, zero ? zero - hit : room)) || last)
                return;
        }
        if (atEnd)
            break;
        // Keep what the colons still to come may look back at, and read on behind it.
        const std::uint64_t done = base + (limit - begin);
        const std::uint64_t keepFrom = done > base + Before ? done - Before : base;
        const std::size_t drop = keepFrom - base;
        std::memmove(buffer.data(), buffer.data() + drop, held - drop);
        held -= drop;
        base = keepFrom;
        next = done;
    }
}

bool ActivityScan::scan(const std::string& path, const Visit& visit) {
    const auto file = m_files.openForReading(path);
    if (!file)
        return false;
    scan(*file, visit);
    return true;
}

} // namespace indexdat
