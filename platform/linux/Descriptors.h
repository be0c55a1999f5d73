#pragma once
// Open file descriptors as the Linux backends use them to decide on the object itself, never on a
// path's text: an owning descriptor, opening a folder entry without following a link, and the
// facts statx gives about an entry or an open descriptor, the mount ID among them; and the one way
// the backends read a file someone else could have placed (a trash record, a bookmark list, the
// registry hive, a browser's files): never blocking on a FIFO, socket or device put in its place.

#include "platform/FileSystem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

namespace platform::linux {

/// An owned file descriptor, closed with the object; -1 when none.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : m_fd(fd) {}
    ~UniqueFd() { reset(); }
    UniqueFd(UniqueFd&& other) noexcept : m_fd(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept;
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;

    int get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }
    int release();
    void reset(int fd = -1);

private:
    int m_fd = -1;
};

/// What the backends need to know about one file system object.
struct Facts {
    mode_t mode = 0;
    std::uint64_t device = 0; ///< st_dev
    std::uint64_t inode = 0;
    std::uint64_t mount = 0;  ///< the mount ID; 0 when the kernel cannot tell
    std::uint64_t links = 1;
    std::uint64_t size = 0;
    uid_t owner = 0;
    std::int64_t modified = 0;
};

/// The user whose files count as the user's (FileInfo::ownedByUser): the effective user, or, for
/// root started through sudo, the user who ran sudo (SUDO_UID), so that work done as root for a
/// user touches that user's files and nobody else's.
uid_t actingUser();

/// Facts about `name` in folder `at` (AT_FDCWD for the working folder), the entry itself when
/// `follow` is false. An empty `name` describes `at` itself.
std::optional<Facts> factsAt(int at, const std::string& name, bool follow);

/// The FileInfo of an entry called `name` with these facts.
FileInfo describe(const std::string& name, const Facts& facts);

/// Whether some process has the file `device`/`inode` open, not counting descriptor `ownFd` of
/// this process (-1: count every descriptor). Reads /proc/*/fd; other users' processes are not
/// visible to an ordinary user.
bool openInSomeProcess(std::uint64_t device, std::uint64_t inode, int ownFd = -1);

/// Whether some process has the file `device`/`inode` mapped into memory (its descriptor may be
/// closed long since: the mapping still reads and writes the file). Reads /proc/*/maps.
bool mappedInSomeProcess(std::uint64_t device, std::uint64_t inode);

/// Whether the file `device`/`inode` backs a loop device. The kernel holds such a file for the
/// device, through no process's descriptors, and whatever is mounted from it reads and writes it.
bool backsLoopDevice(std::uint64_t device, std::uint64_t inode);

/// Whether the file `device`/`inode` is in use: open or mapped in some process (see
/// openInSomeProcess, mappedInSomeProcess) or backing a loop device.
bool fileInUse(std::uint64_t device, std::uint64_t inode, int ownFd = -1);

/// Opens folder `name` in folder `at` without following a link in its last component; -1 when it
/// is no folder (a link to one included).
UniqueFd openFolderAt(int at, const std::string& name);

/// Opens `path` as a reference to where it leads (O_PATH: links in it followed, nothing read).
UniqueFd openLocation(const std::string& path);

/// How opening or reading a file for its content ended.
enum class ReadResult {
    Read,       ///< a regular file, opened (and read whole)
    Missing,    ///< no such entry (not a problem: nothing recorded)
    Link,       ///< a symbolic link where a link was not to be followed
    NotRegular, ///< a FIFO, socket, device or folder: never opened for reading
    TooLarge,   ///< larger than the limit given
    Failed,     ///< any other error (permissions, I/O)
};

/// What tells one state of a file or folder from any other: which it is, its size and its last
/// change to the nanosecond. Two stamps are equal only when nothing was written in between.
std::string stateStamp(const struct stat& st);

/// Why a read ended as it did, for a problem line: "is a FIFO, not a regular file".
std::string readProblem(ReadResult result, mode_t mode = 0);

/// A regular file opened for reading.
struct OpenedFile {
    ReadResult result = ReadResult::Failed;
    UniqueFd fd;           ///< open when result is Read
    struct stat st {};     ///< of the opened object, when it was opened
};

/// Opens `name` in folder `at` (AT_FDCWD: `name` is a path) for reading without ever blocking:
/// O_NONBLOCK, so that a FIFO has no writer to wait for, then fstat, and only a regular file is
/// kept open. With `followLink` false, a link in the last component is refused (Link).
/// `extraFlags` are added to the open (O_NOATIME).
OpenedFile openRegularFile(int at, const std::string& name, bool followLink, int extraFlags = 0);

/// A regular file's content.
struct FileText {
    ReadResult result = ReadResult::Failed;
    std::string text;      ///< the content when result is Read
    struct stat st {};     ///< of the opened object, when it was opened
};

/// Reads the regular file `name` in folder `at` whole, as openRegularFile opens it; a file larger
/// than `limit` bytes is refused (TooLarge) rather than read in part.
FileText readRegularFile(int at, const std::string& name, std::size_t limit, bool followLink = false);

} // namespace platform::linux
