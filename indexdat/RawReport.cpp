#include "indexdat/RawReport.h"

#include "platform/RawFiles.h"

#include <vector>

namespace indexdat {

std::string fileSizeText(std::uint64_t length) {
    return "File Size in bytes = " + std::to_string(length);
}

bool RawReport::read(const std::string& path, const std::function<void(std::uint64_t length)>& start,
                     const std::function<void(std::string_view bytes)>& chunk) {
    const auto file = m_files.openForReading(path);
    if (!file)
        return false;
    const std::int64_t length = file->seek(0, platform::RawFile::From::End);
    if (length < 0 || file->seek(0, platform::RawFile::From::Begin) != 0)
        return false;
    start(static_cast<std::uint64_t>(length));
    std::vector<char> buffer(std::size_t{1} << 20);
    std::uint64_t left = static_cast<std::uint64_t>(length);
    while (left > 0) {
        const std::size_t want = left < buffer.size() ? static_cast<std::size_t>(left) : buffer.size();
        const std::size_t got = file->read(buffer.data(), want);
        if (got == 0)
            return false; // shrank or failed under us
        chunk(std::string_view(buffer.data(), got));
        left -= got;
    }
    return true;
}

bool RawReport::readAll(const std::string& path, std::string& bytes) {
    std::string content;
    const bool ok = read(
        path, [&](std::uint64_t length) { content.reserve(static_cast<std::size_t>(length)); },
        [&](std::string_view part) { content.append(part); });
    if (ok)
        bytes = std::move(content);
    return ok;
}

} // namespace indexdat
