#include "platform/linux/LinuxRawFiles.h"

#include "platform/linux/Descriptors.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

class LinuxRawFile final : public RawFile {
public:
    explicit LinuxRawFile(int fd, bool direct = false, int restoreMode = -1)
        : m_fd(fd), m_direct(direct), m_restoreMode(restoreMode) {}
    ~LinuxRawFile() override {
        if (m_restoreMode >= 0)
            ::fchmod(m_fd, static_cast<mode_t>(m_restoreMode));
        ::close(m_fd);
    }
    LinuxRawFile(const LinuxRawFile&) = delete;
    LinuxRawFile& operator=(const LinuxRawFile&) = delete;

    std::size_t read(void* buffer, std::size_t count) override {
        auto* out = static_cast<char*>(buffer);
        std::size_t done = 0;
        while (done < count) {
            const ssize_t n = ::read(m_fd, out + done, count - done);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            done += static_cast<std::size_t>(n);
        }
        return done;
    }

    std::size_t write(const void* data, std::size_t count) override {
        const auto* in = static_cast<const char*>(data);
        std::size_t done = 0;
        while (done < count) {
            const ssize_t n = ::write(m_fd, in + done, count - done);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            done += static_cast<std::size_t>(n);
        }
        return done;
    }

    std::int64_t seek(std::int64_t distance, From from) override {
        const int whence = from == From::Begin ? SEEK_SET : from == From::Current ? SEEK_CUR : SEEK_END;
        return ::lseek(m_fd, distance, whence);
    }

    bool flush() override { return ::fdatasync(m_fd) == 0; }

    void startFlush(std::int64_t offset, std::int64_t length) override {
        ::sync_file_range(m_fd, offset, length, SYNC_FILE_RANGE_WRITE);
    }

    bool truncate() override {
        const off_t here = ::lseek(m_fd, 0, SEEK_CUR);
        return here >= 0 && ::ftruncate(m_fd, here) == 0;
    }

    std::intptr_t nativeHandle() const override { return m_fd; }

    std::optional<FileInfo> info() const override {
        const auto facts = factsAt(m_fd, "", false);
        if (!facts)
            return std::nullopt;
        return describe("", *facts);
    }

    bool openElsewhere() const override {
        const auto facts = factsAt(m_fd, "", false);
        return facts && fileInUse(facts->device, facts->inode, m_fd);
    }

    std::vector<std::pair<std::uint64_t, std::uint64_t>> dataRanges() const override {
        struct stat st {};
        if (::fstat(m_fd, &st) != 0 || st.st_size <= 0)
            return {};
        const off_t end = st.st_size;
        std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
        for (off_t at = 0; at < end;) {
            const off_t data = ::lseek(m_fd, at, SEEK_DATA);
            if (data < 0) {
                if (errno == ENXIO)
                    break; // nothing but a hole from here to the end
                return RawFile::dataRanges(); // the filesystem cannot tell: all of it
            }
            off_t hole = ::lseek(m_fd, data, SEEK_HOLE);
            if (hole < 0 || hole > end)
                hole = end;
            ranges.emplace_back(static_cast<std::uint64_t>(data), static_cast<std::uint64_t>(hole - data));
            at = hole;
        }
        ::lseek(m_fd, 0, SEEK_SET);
        return ranges;
    }

    std::unique_ptr<RawFile> openUncached() const override {
        const std::string self = "/proc/self/fd/" + std::to_string(m_fd);
        // The same file, reached through this descriptor and not through any name.
        const int direct = ::open(self.c_str(), O_RDONLY | O_DIRECT | O_CLOEXEC);
        if (direct >= 0)
            return std::make_unique<LinuxRawFile>(direct, true);
        // tmpfs and some others refuse O_DIRECT: what is on the device is then read after the
        // cache has been written out and dropped.
        if (::fdatasync(m_fd) != 0)
            return nullptr;
        ::posix_fadvise(m_fd, 0, 0, POSIX_FADV_DONTNEED);
        const int plain = ::open(self.c_str(), O_RDONLY | O_CLOEXEC);
        return plain >= 0 ? std::make_unique<LinuxRawFile>(plain) : nullptr;
    }

    std::size_t readAlignment() const override {
        if (!m_direct)
            return 1;
        struct stat st {};
        // The filesystem's block size is a multiple of the device's logical block size.
        return ::fstat(m_fd, &st) == 0 && st.st_blksize >= 512 ? static_cast<std::size_t>(st.st_blksize) : 4096;
    }

private:
    int m_fd;
    bool m_direct;
    int m_restoreMode; ///< the permissions to give back when closed; -1 to leave them
};

} // namespace

std::unique_ptr<RawFile> adoptRaw(int fd, int restoreMode) {
    if (fd < 0)
        return nullptr;
    // Only plain files: writing through a device node or a pipe that took a file's place would
    // destroy something nobody chose; and only files with one name: the others would change too.
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink > 1) {
        const int err = S_ISREG(st.st_mode) ? EMLINK : EINVAL;
        ::close(fd);
        errno = err;
        return nullptr;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const int err = errno == EWOULDBLOCK ? EBUSY : errno;
        ::close(fd);
        errno = err;
        return nullptr;
    }
    return std::make_unique<LinuxRawFile>(fd, false, restoreMode);
}

std::unique_ptr<RawFile> openRawAt(int at, const std::string& name, bool create, bool exclusive) {
    const int creation = create ? O_CREAT | (exclusive ? O_EXCL : 0) : 0;
    // Non-blocking: a pipe in a file's place must not hold the program up (the checks refuse it).
    const int fd = ::openat(at, name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | creation, 0600);
    if (fd >= 0)
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return adoptRaw(fd);
}

std::unique_ptr<RawFile> LinuxRawFiles::open(const std::string& path) {
    return openRawAt(AT_FDCWD, path, true);
}

std::unique_ptr<RawFile> LinuxRawFiles::openForReading(const std::string& path) {
    // Non-blocking so that a pipe or device named like a record file cannot hang the caller.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return nullptr;
    // A folder, pipe or device is no file to read bytes from (/dev/zero would never end).
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const int err = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
        ::close(fd);
        errno = err;
        return nullptr;
    }
    return std::make_unique<LinuxRawFile>(fd);
}

int LinuxRawFiles::lastError() const {
    return errno;
}

void LinuxRawFiles::setLastError(int code) {
    errno = code;
}

std::string LinuxRawFiles::errorText(int code) const {
    char buffer[256] = {};
    // The GNU strerror_r may return a static string instead of filling the buffer.
    const char* text = ::strerror_r(code, buffer, sizeof buffer);
    if (!text || std::strncmp(text, "Unknown error", 13) == 0)
        return {};
    return text;
}

} // namespace platform::linux
