#pragma once
// What the browser formats need of the system, given them by the system's backend: the formats
// decide what to read, change and remove, the backend knows how files are reached safely on its
// system (never through a link put in a file's place, never blocking on a FIFO) and how to ask
// whether a browser's lock is held.

#include "platform/Folder.h"
#include "platform/UrlCache.h" // StoreProblem

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace browsers {

class ProfileFiles {
public:
    virtual ~ProfileFiles() = default;

    /// The name of a SQLite file layer that never writes a byte, for SqliteDb::openReadOnly.
    virtual const char* readOnlySqlite() = 0;
    /// Whether `path` is a regular file, itself and not through a link.
    virtual bool isRegularFile(const std::string& path) = 0;
    /// Why the file `path` cannot be opened for reading (and writing, with `write`), in the
    /// system's words; empty when it can.
    virtual std::string openProblem(const std::string& path, bool write) = 0;
    /// Opens the folder `path`, also through a link in its own place when `followLink`; null, with
    /// errno telling why, when it cannot be opened.
    virtual std::unique_ptr<platform::Folder> openFolder(const std::string& path, bool followLink) = 0;
    /// The text of the regular file `path` (links followed) when it is no larger than `limit`;
    /// empty when it cannot be read.
    virtual std::string readText(const std::string& path, std::size_t limit) = 0;
    /// Whether `path` leads to a folder, links followed.
    virtual bool isFolder(const std::string& path) = 0;
    /// Whether there is an entry `path`, a link to nowhere included.
    virtual bool exists(const std::string& path) = 0;
    /// The names of the entries of folder `path` that lead to folders; empty when it cannot be read.
    virtual std::vector<std::string> subfolders(const std::string& path) = 0;
    /// Where the link `path` points; empty when it is no link.
    virtual std::string linkTarget(const std::string& path) = 0;

    /// A regular file open for reading.
    class ReadableFile {
    public:
        virtual ~ReadableFile() = default;
        virtual std::uint64_t size() const = 0;
        /// When its content last changed, in seconds since 1970-01-01 UTC.
        virtual std::int64_t modified() const = 0;
        /// Reads `length` bytes at `offset` into `buffer`; false when fewer could be read.
        virtual bool readAt(std::string& buffer, std::size_t length, std::uint64_t offset) = 0;
    };
    /// Opens the entry `name` of `folder` for reading when it is a regular file, never through a
    /// link, never blocking on a FIFO, and leaving its access time as it was where the system
    /// allows; null otherwise.
    virtual std::unique_ptr<ReadableFile> openReadable(platform::Folder& folder, const std::string& name) = 0;
    /// What the folder `path` (links followed) is now: which folder, and when an entry was last
    /// added to it or removed, told apart to the system's finest step. Two stamps are equal only
    /// when nothing changed between them; empty when the folder cannot be asked.
    virtual std::string folderStamp(const std::string& path) = 0;

    // The locks the browsers hold their profiles with.

    /// The name of this machine, as a browser writes it into its lock.
    virtual std::string hostName() = 0;
    /// Whether the process `pid` of this machine lives.
    virtual bool processAlive(long pid) = 0;
    /// Whether another process holds a lock on the file `path`: false when there is no such file;
    /// true also when it is something a browser would not make (it cannot be told then).
    virtual bool fileLocked(const std::string& path) = 0;

    /// What a rewrite makes of a file's text: the new text, or nullopt to leave the file as it is.
    using Rewrite = std::function<std::optional<std::string>(const std::string& text)>;
    /// Rewrites the regular file `path`, reached without a link and no larger than `limit`, as
    /// `rewrite` gives it: through a new file put in its place, only when the file did not change
    /// since it was read. True when there is no file or it was rewritten or left as `rewrite` said;
    /// false, with the file named in `problems`, when it could not be read or rewritten.
    virtual bool rewriteFile(const std::string& path, std::size_t limit, const Rewrite& rewrite,
                             std::vector<platform::StoreProblem>& problems) = 0;
};

} // namespace browsers
