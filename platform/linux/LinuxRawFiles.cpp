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
    explicit LinuxRawFile(int fd) : m_fd(fd) {}
    ~LinuxRawFile() override { ::close(m_fd); }
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

private:
    int m_fd;
};

} // namespace

std::unique_ptr<RawFile> openRawAt(int at, const std::string& name, bool create) {
    const int fd = ::openat(at, name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | (create ? O_CREAT : 0), 0600);
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
    return std::make_unique<LinuxRawFile>(fd);
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
