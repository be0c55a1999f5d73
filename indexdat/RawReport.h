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
