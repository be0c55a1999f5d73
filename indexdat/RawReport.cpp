#include "indexdat/RawReport.h"

#include "platform/RawFiles.h"

#include <vector>

namespace indexdat {

std::string fileSizeText(std::uint64_t length) {
    return "File Size in bytes = " + std::to_string(length);
}

std::string visibleText(std::string_view bytes, std::size_t lineWidth) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 2);
    std::size_t column = 0;
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        if (lineWidth && column == lineWidth) {
            out += '\n';
            column = 0;
        }
        ++column;
        if (b >= 0x20 && b < 0x7f) {
            out += c;
            continue;
        }
        // Record files are mostly zeros: a light dot for them keeps the text readable.
        const unsigned code = b == 0 ? 0x2219 : (b < 0x20 || b == 0x7f) ? 0x25ab : b;
        if (code < 0x800) {
            out += static_cast<char>(0xc0 | (code >> 6));
            out += static_cast<char>(0x80 | (code & 0x3f));
        } else {
            out += static_cast<char>(0xe0 | (code >> 12));
            out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
            out += static_cast<char>(0x80 | (code & 0x3f));
        }
    }
    return out;
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
