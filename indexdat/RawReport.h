#pragma once
// The raw report: a record file's length and its bytes exactly as stored, nothing rendered or
// replaced. The bytes come in chunks so that a large file can be streamed to a terminal without
// being held whole.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace platform {
class RawFiles;
}

namespace indexdat {

/// The size line: "File Size in bytes = " and the length in plain decimal, without separators.
std::string fileSizeText(std::uint64_t length);

/// The bytes as a reader can see them, in UTF-8: one visible character per byte, printable ASCII
/// as it is, a zero byte as a bullet operator (U+2219), the other control bytes and DEL as a small
/// white square (U+25AB), bytes from 0x80 up as their Latin-1 characters (glyphs common fonts
/// have); a line break after every `lineWidth` bytes (0: none), so that a
/// large file can be shown without one endless line.
std::string visibleText(std::string_view bytes, std::size_t lineWidth);

class RawReport {
public:
    explicit RawReport(platform::RawFiles& files) : m_files(files) {}

    /// Opens `path` for reading; on success calls `start` with the file's length, then `chunk` with
    /// its bytes in order, and returns true. False when the file cannot be opened or its length
    /// cannot be learnt (nothing is called then), or when reading fails midway.
    bool read(const std::string& path, const std::function<void(std::uint64_t length)>& start,
              const std::function<void(std::string_view bytes)>& chunk);
    /// The whole content of `path`, or false (leaving `bytes` untouched) when it cannot be read.
    bool readAll(const std::string& path, std::string& bytes);

private:
    platform::RawFiles& m_files;
};

} // namespace indexdat
