#include "wipe/Random.h"

#include "core/Rounding.h"
#include "wipe/FileError.h"

#include <limits>
#include <stdexcept>

namespace wipe {
namespace {

const std::string CrLf = "\r\n";

} // namespace

Random::Random(platform::RawFiles& files) : m_files(files) {}

Random::~Random() = default; // the handle closes with its owner, and nothing is reported

std::string Random::describe(int number, const std::string& extra, int osCode, const std::string& osText) {
    std::string suffix;
    if (osCode != 0)
        suffix = CrLf + "Error " + std::to_string(osCode) + CrLf + (osText.empty() ? "Unknown Error." : osText);
    switch (number) {
    case FileError::AlreadyOpen:
        return "The file '" + extra + "' is already open." + suffix;
    case FileError::OpenFailed:
        return "Error opening '" + extra + "'." + suffix;
    case FileError::NotOpen:
        return "There is no open file.";
    case FileError::SeekFailed:
        return "Seek Error." + CrLf + extra;
    default:
        return "Unknown error." + suffix;
    }
}

void Random::raise(int number, const std::string& extra) const {
    const int code = m_files.lastError();
    const int known = number == FileError::AlreadyOpen || number == FileError::OpenFailed ||
                      number == FileError::NotOpen || number == FileError::SeekFailed;
    throw FileError(known ? number : FileError::Unknown,
                    describe(number, extra, code, code != 0 ? m_files.errorText(code) : std::string()));
}

void Random::requireOpen() const {
    if (!m_file)
        raise(FileError::NotOpen);
}

std::intptr_t Random::FileHandle() const {
    requireOpen();
    return m_file->nativeHandle();
}

const std::string& Random::FileName() const {
    requireOpen();
    return m_fileName;
}

bool Random::AutoFlush() const {
    requireOpen();
    return m_autoFlush;
}

void Random::AutoFlush(bool on) {
    requireOpen();
    m_autoFlush = on;
}

void Random::OpenFile(const std::string& fileName) {
    // A stale error code from some earlier call must not end up in this call's message.
    m_files.setLastError(0);
    if (m_file)
        raise(FileError::AlreadyOpen, m_fileName);
    auto file = m_files.open(fileName);
    if (!file)
        raise(FileError::OpenFailed, fileName);
    m_file = std::move(file);
    m_fileName = fileName;
}

void Random::OpenFile(const std::string& fileName, platform::Folder* folder, const std::string& name) {
    m_files.setLastError(0);
    if (m_file)
        raise(FileError::AlreadyOpen, m_fileName);
    auto file = folder ? folder->openFile(name, platform::Folder::Create::Exclusive) : nullptr;
    if (!file)
        raise(FileError::OpenFailed, fileName);
    m_file = std::move(file);
    m_fileName = fileName;
}

platform::FileInfo Random::Info() const {
    requireOpen();
    return m_file->info().value_or(platform::FileInfo{});
}

void Random::CloseFile() {
    requireOpen();
    m_file.reset();
    m_fileName.clear();
    m_autoFlush = false;
}

std::vector<std::uint8_t> Random::ReadBytes(std::int32_t byteCount) {
    requireOpen();
    if (byteCount < 1)
        throw std::length_error("ReadBytes needs at least one byte");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(byteCount), 0);
    m_file->read(bytes.data(), bytes.size()); // a short read leaves the tail zero, on purpose
    return bytes;
}

void Random::WriteBytes(std::span<const std::uint8_t> data) {
    requireOpen();
    m_file->write(data.data(), data.size());
    if (m_autoFlush)
        Flush();
}

bool Random::Flush() {
    requireOpen();
    return m_file->flush();
}

void Random::StartFlush(std::int64_t position, std::int64_t length) {
    requireOpen();
    m_file->startFlush(position, length);
}

void Random::SeekAbsolute(std::int32_t highPos, std::int32_t lowPos) {
    requireOpen();
    const auto position = static_cast<std::int64_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(highPos)) << 32) |
                                                    static_cast<std::uint32_t>(lowPos));
    m_file->seek(position, platform::RawFile::From::Begin);
}

void Random::SeekRelative(float offset) {
    requireOpen();
    const std::int64_t rounded = core::roundHalfEven(offset);
    if (rounded < std::numeric_limits<std::int32_t>::min() || rounded > std::numeric_limits<std::int32_t>::max())
        throw std::overflow_error("SeekRelative: offset out of the 32-bit range");
    m_files.setLastError(0);
    const std::int64_t now = m_file->seek(rounded, platform::RawFile::From::Current);
    // The new position travels as its low 32 bits, signed, in a single-precision number: a failure
    // reads -1 there, and so, rightly or not, does a success that lands on 4 GiB - 1.
    const float low = static_cast<float>(static_cast<std::int32_t>(static_cast<std::uint32_t>(now)));
    if (low != -1.0f)
        return;
    const float code = static_cast<float>(m_files.lastError());
    if (code != 0.0f) {
        const std::string number = std::to_string(static_cast<long long>(code));
        raise(FileError::SeekFailed, "Error " + number + "." + CrLf + number);
    }
}

} // namespace wipe
