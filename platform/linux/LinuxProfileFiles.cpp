#include "platform/linux/LinuxProfileFiles.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/LinuxFolder.h"
#include "platform/linux/ReadOnlySqliteFiles.h"
#include "platform/linux/ReplaceFile.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

class Readable final : public browsers::ProfileFiles::ReadableFile {
public:
    explicit Readable(OpenedFile opened) : m_file(std::move(opened)) {}
    std::uint64_t size() const override { return static_cast<std::uint64_t>(m_file.st.st_size); }
    std::int64_t modified() const override { return m_file.st.st_mtim.tv_sec; }
    bool readAt(std::string& buffer, std::size_t length, std::uint64_t offset) override {
        buffer.resize(length);
        std::size_t done = 0;
        while (done < length) {
            const ssize_t n = ::pread(m_file.fd.get(), buffer.data() + done, length - done, static_cast<off_t>(offset + done));
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            done += static_cast<std::size_t>(n);
        }
        buffer.resize(done);
        return done == length;
    }

private:
    OpenedFile m_file;
};

class LinuxProfileFiles final : public browsers::ProfileFiles {
public:
    const char* readOnlySqlite() override { return readOnlySqliteFiles(); }

    bool isRegularFile(const std::string& path) override {
        struct stat st {};
        return ::lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
    }

    std::string openProblem(const std::string& path, bool write) override {
        if (::access(path.c_str(), write ? R_OK | W_OK : R_OK) != 0)
            return std::strerror(errno);
        return {};
    }

    std::unique_ptr<Folder> openFolder(const std::string& path, bool followLink) override {
        const UniqueFd at(followLink ? ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)
                                     : openFolderAt(AT_FDCWD, path).release());
        if (!at)
            return nullptr;
        return LinuxFolder::open(at.get(), "", path);
    }

    std::string readText(const std::string& path, std::size_t limit) override {
        return readRegularFile(AT_FDCWD, path, limit, true).text;
    }

    bool isFolder(const std::string& path) override {
        struct stat st {};
        return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
    }

    bool exists(const std::string& path) override {
        struct stat st {};
        return ::lstat(path.c_str(), &st) == 0;
    }

    std::vector<std::string> subfolders(const std::string& path) override {
        std::vector<std::string> names;
        DIR* dir = ::opendir(path.c_str());
        if (!dir)
            return names;
        while (const dirent* e = ::readdir(dir)) {
            const std::string name = e->d_name;
            if (name != "." && name != ".." && isFolder(path + "/" + name))
                names.push_back(name);
        }
        ::closedir(dir);
        return names;
    }

    std::string linkTarget(const std::string& path) override {
        char buf[PATH_MAX];
        const ssize_t n = ::readlink(path.c_str(), buf, sizeof buf - 1);
        return n > 0 ? std::string(buf, static_cast<std::size_t>(n)) : std::string();
    }

    std::unique_ptr<ReadableFile> openReadable(Folder& folder, const std::string& name) override {
        const int at = static_cast<int>(folder.nativeHandle());
        OpenedFile opened = openRegularFile(at, name, false, O_NOATIME);
        // O_NOATIME is refused on files of other users: read those with their access time kept
        // as the mount decides.
        if (opened.result == ReadResult::Failed && errno == EPERM)
            opened = openRegularFile(at, name, false);
        return opened.result == ReadResult::Read ? std::make_unique<Readable>(std::move(opened)) : nullptr;
    }

    std::string folderStamp(const std::string& path) override {
        struct stat st {};
        return ::stat(path.c_str(), &st) == 0 ? stateStamp(st) : std::string();
    }

    std::string hostName() override {
        char host[HOST_NAME_MAX + 1] = {};
        ::gethostname(host, sizeof host - 1);
        return host;
    }

    bool processAlive(long pid) override {
        return pid > 0 && (::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM);
    }

    bool fileLocked(const std::string& path) override {
        const OpenedFile file = openRegularFile(AT_FDCWD, path, false);
        if (file.result == ReadResult::Missing)
            return false;
        if (file.result != ReadResult::Read)
            return true;
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        return ::fcntl(file.fd.get(), F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    }

    bool rewriteFile(const std::string& path, std::size_t limit, const Rewrite& rewrite,
                     std::vector<StoreProblem>& problems) override {
        // Read only as a regular file reached without a link: whatever else stands in its place is
        // not the browser's own file and is not rewritten.
        const FileText file = readRegularFile(AT_FDCWD, path, limit, false);
        if (file.result == ReadResult::Missing)
            return true;
        if (file.result != ReadResult::Read) {
            problems.push_back({path, readProblem(file.result, file.st.st_mode)});
            return false;
        }
        const std::optional<std::string> text = rewrite(file.text);
        if (!text)
            return true;
        // A file changed since it was read holds what this rewrite would lose.
        struct stat now {};
        if (::lstat(path.c_str(), &now) != 0 || stateStamp(now) != stateStamp(file.st)) {
            problems.push_back({path, "changed while it was being cleaned"});
            return false;
        }
        if (!replaceFile(path, *text, 0600)) {
            problems.push_back({path, std::string("could not be rewritten: ") + std::strerror(errno)});
            return false;
        }
        return true;
    }
};

} // namespace

browsers::ProfileFiles& profileFiles() {
    static LinuxProfileFiles files;
    return files;
}

} // namespace platform::linux
