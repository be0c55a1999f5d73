#pragma once
// Raw file handles for unbuffered random-access reading and writing of bytes: the facility under
// the file object of the secure-deletion code. A handle is opened for reading and writing, created
// when missing, never truncated, never through a symbolic link, and exclusively: while it is open no
// other opener gets the same file. A file with other hard links is never opened for writing: what
// was written through one name would change the file under all of them.

#include "platform/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform {

class RawFile {
public:
    enum class From { Begin, Current, End };

    virtual ~RawFile() = default;

    /// Reads up to `count` bytes at the file position; returns the number read (0 at end of file or
    /// on failure, with lastError() set on failure).
    virtual std::size_t read(void* buffer, std::size_t count) = 0;
    /// Writes `count` bytes at the file position; returns the number written.
    virtual std::size_t write(const void* data, std::size_t count) = 0;
    /// Moves the file position; returns the new position, or -1 on failure (lastError() set).
    virtual std::int64_t seek(std::int64_t distance, From from) = 0;
    /// Makes everything written so far reach the device. False on failure.
    virtual bool flush() = 0;
    /// Starts writing `length` bytes from `offset` to the device without waiting for it, so that
    /// the device works while the caller goes on; flush() still has to follow. May do nothing.
    virtual void startFlush(std::int64_t /*offset*/, std::int64_t /*length*/) {}
    /// Ends the file at the current position. False on failure.
    virtual bool truncate() = 0;
    /// OS-level handle number, for display and identity only.
    virtual std::intptr_t nativeHandle() const = 0;
    /// Facts about the open file (which file it is, its links, size and mount), as they are now;
    /// empty on failure. The name is left empty.
    virtual std::optional<FileInfo> info() const = 0;
    /// Whether another handle, in this process or another, has the file open or mapped too, the
    /// system's own for a device among them (a loop device's backing file). Where the open is
    /// exclusive by itself (Windows) this is always false.
    virtual bool openElsewhere() const = 0;
    /// The byte ranges of the file that hold data, in order, as {offset, length}: a sparse file's
    /// holes are left out, so that writing over the data never allocates new blocks. Where the
    /// system cannot tell, the whole file.
    virtual std::vector<std::pair<std::uint64_t, std::uint64_t>> dataRanges() const;
    /// A second handle to the same file for reading what the device holds, past the system's cache
    /// (on Linux O_DIRECT, or the cache dropped first where the filesystem refuses it; on Windows
    /// no intermediate buffering, or the cache written out first where this handle shares no
    /// reading); null when the system offers neither. Reads through it are whole multiples of
    /// `readAlignment()`.
    virtual std::unique_ptr<RawFile> openUncached() const { return nullptr; }
    /// The alignment in bytes that buffers, offsets and lengths of reads through openUncached()
    /// need; 1 when there is none.
    virtual std::size_t readAlignment() const { return 1; }
};

inline std::vector<std::pair<std::uint64_t, std::uint64_t>> RawFile::dataRanges() const {
    const auto facts = info();
    if (!facts || facts->size == 0)
        return {};
    return {{0, facts->size}};
}

class RawFiles {
public:
    virtual ~RawFiles() = default;

    /// Opens `path` read-write, creating it when missing (OPEN_ALWAYS), exclusively and without
    /// following a symbolic link. Only plain files with one name open: a device, pipe or folder is
    /// refused, and so is a file with other hard links.
    /// Returns null on failure, with lastError() set.
    virtual std::unique_ptr<RawFile> open(const std::string& path) = 0;
    /// Opens the existing regular file `path` for reading only, shared with other readers, never
    /// creating it and never through a symbolic link. Writing through the handle fails. Null on
    /// failure, and for folders, pipes and devices.
    virtual std::unique_ptr<RawFile> openForReading(const std::string& path) = 0;
    /// The calling thread's last OS error code (errno / GetLastError); 0 when none.
    virtual int lastError() const = 0;
    virtual void setLastError(int code) = 0;
    /// The system's text for an OS error code, or empty when the system has none.
    virtual std::string errorText(int code) const = 0;
};

} // namespace platform
