#include "platform/linux/ReplaceFile.h"

#include "platform/linux/Descriptors.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

bool writeAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

} // namespace

bool replaceFile(const std::string& path, const std::string& text, mode_t modeIfNew) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    struct stat old {};
    const bool existed = ::stat(path.c_str(), &old) == 0;
    // Hidden and unique, in the same folder: a rename within one file system is atomic.
    std::string temp = folder + "/." + name + ".XXXXXX";
    UniqueFd fd(::mkstemp(temp.data()));
    if (!fd)
        return false;
    bool ok = ::fchmod(fd.get(), existed ? (old.st_mode & 07777) : modeIfNew) == 0;
    // Root cleaning for a user hands the file back to its owner; anyone else cannot, and the file
    // stays theirs anyway.
    if (ok && existed && ::geteuid() == 0 && (old.st_uid != 0 || old.st_gid != 0))
        ok = ::fchown(fd.get(), old.st_uid, old.st_gid) == 0;
    ok = ok && writeAll(fd.get(), text) && ::fsync(fd.get()) == 0;
    ok = ::close(fd.release()) == 0 && ok;
    if (!ok || ::rename(temp.c_str(), path.c_str()) != 0) {
        ::unlink(temp.c_str());
        return false;
    }
    if (UniqueFd dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); dir)
        ::fsync(dir.get());
    return true;
}

} // namespace platform::linux
