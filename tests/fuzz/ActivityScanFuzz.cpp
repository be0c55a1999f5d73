// The activity scan over any bytes, held against the byte-by-byte loop it replaces. Record files
// come from anywhere on a drive, so their content is arbitrary: the scan must neither read outside
// its buffer nor list anything the loop would not.
//
// The first input byte picks where the rest lands in the file: right at its start, or behind zero
// bytes that push it across the end of the scan's first read of a little over 1 MiB, where hits are
// carried from one read to the next. Zero bytes hold no marker and end no entry that starts after
// them, so the loop's list for the rest alone is the list for the whole file.

#include "indexdat/ActivityScan.h"
#include "platform/RawFiles.h"
#include "tests/fuzz/FuzzCheck.h"
#include "tests/indexdat/ReferenceScan.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace {

/// A file read from memory; everything but reading fails.
class MemoryFile final : public platform::RawFile {
public:
    explicit MemoryFile(std::string_view bytes) : m_bytes(bytes) {}

    std::size_t read(void* buffer, std::size_t count) override {
        const std::size_t n = std::min(count, m_bytes.size() - m_pos);
        std::memcpy(buffer, m_bytes.data() + m_pos, n);
        m_pos += n;
        return n;
    }
    std::size_t write(const void*, std::size_t) override { return 0; }
    std::int64_t seek(std::int64_t, From) override { return -1; }
    bool flush() override { return false; }
    bool truncate() override { return false; }
    std::intptr_t nativeHandle() const override { return -1; }
    std::optional<platform::FileInfo> info() const override { return std::nullopt; }
    bool openElsewhere() const override { return false; }

private:
    std::string_view m_bytes;
    std::size_t m_pos = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    // Odd: the rest is the file. Even: it starts up to 1 KiB before or after the 1 MiB mark.
    const std::size_t lead = data[0] % 2 ? 0 : (std::size_t{1} << 20) + data[0] * 4 - 512;
    std::string file(lead, '\0');
    file.append(rest);

    std::vector<std::string> scanned;
    MemoryFile source(file);
    indexdat::ActivityScan::scan(source, [&](std::string_view entry) {
        FUZZ_CHECK(entry.size() <= indexdat::EntryLength);
        scanned.emplace_back(entry);
        return true;
    });
    FUZZ_CHECK(scanned == testsupport::referenceScan(rest));

    // A visitor that ends the scan gets exactly the first entry.
    MemoryFile again(file);
    std::size_t visits = 0;
    indexdat::ActivityScan::scan(again, [&](std::string_view) { return ++visits, false; });
    FUZZ_CHECK(visits == std::min<std::size_t>(scanned.size(), 1));
    return 0;
}
