#pragma once
// The random-access file object: one OS file handle for unbuffered reading and writing of raw
// bytes at chosen positions. The free-space wipe writes its temporary file through it. Files are
// opened read-write, created when missing and never truncated, exclusively (no other opener while
// open) and never through a symbolic link. Every failure is a FileError numbered 45600 to 45604.

#include "platform/Folder.h"
#include "platform/RawFiles.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace wipe {

class Random {
public:
    /// A closed file object over the platform's raw files.
    explicit Random(platform::RawFiles& files);
    /// Closes the handle if one is open, silently.
    ~Random();
    Random(const Random&) = delete;
    Random& operator=(const Random&) = delete;

    /// The OS handle number. Raises 45603 when closed.
    std::intptr_t FileHandle() const;
    /// The name given to OpenFile. Raises 45603 when closed.
    const std::string& FileName() const;
    /// Whether a file is open; never raises.
    bool IsOpen() const { return m_file != nullptr; }
    /// Whether every WriteBytes is followed by Flush. Get and set raise 45603 when closed.
    bool AutoFlush() const;
    void AutoFlush(bool on);

    /// Opens `fileName` (created when missing, contents kept). Raises 45601 naming the file already
    /// open when one is, 45602 naming `fileName` when the system refuses it.
    void OpenFile(const std::string& fileName);
    /// Creates `name` inside the open folder `folder` and opens it as OpenFile does, calling it
    /// `fileName`. Only a new file: when anything has that name already, or there is no folder (it
    /// could not be opened), raises 45602 as a failed open does.
    void OpenFile(const std::string& fileName, platform::Folder* folder, const std::string& name);
    /// Facts about the open file (which file it is). Raises 45603 when closed.
    platform::FileInfo Info() const;
    /// Closes the handle; auto-flush goes back to off. Raises 45603 when closed.
    void CloseFile();
    /// `byteCount` bytes read at the file position, always `byteCount` long: what lies past the end
    /// of the file reads as 0. Raises 45603 when closed; std::length_error when `byteCount` < 1.
    std::vector<std::uint8_t> ReadBytes(std::int32_t byteCount);
    /// Writes `data` at the file position; a short or failed write is not reported (a full disk
    /// simply stops taking bytes). Raises 45603 when closed.
    void WriteBytes(std::span<const std::uint8_t> data);
    /// Makes everything written reach the device; false when the system says it did not. Raises
    /// 45603 when closed.
    bool Flush();
    /// Starts `length` bytes from `position` on their way to the device without waiting; Flush
    /// still has to follow. Raises 45603 when closed.
    void StartFlush(std::int64_t position, std::int64_t length);
    /// Moves to the 64-bit position whose high and low 32-bit halves are given (the low half read
    /// as unsigned). A failed move is not reported. Raises 45603 when closed.
    void SeekAbsolute(std::int32_t highPos, std::int32_t lowPos);
    /// Moves by `offset` rounded half to even (a 32-bit move). Raises 45603 when closed, 45604 when
    /// the system refuses the move, std::overflow_error when the rounded offset exceeds 32 bits.
    void SeekRelative(float offset);

    /// The description of error `number` with `extra` text, as RaiseError builds it when the last OS
    /// error is `osCode` (0: none) and the system's text for it is `osText` (empty: it has none).
    static std::string describe(int number, const std::string& extra, int osCode, const std::string& osText);

private:
    [[noreturn]] void raise(int number, const std::string& extra = {}) const;
    void requireOpen() const;

    platform::RawFiles& m_files;
    std::unique_ptr<platform::RawFile> m_file;
    std::string m_fileName;
    bool m_autoFlush = false;
};

} // namespace wipe
