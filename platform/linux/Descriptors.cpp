#include "platform/linux/Descriptors.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <string_view>
#include <unistd.h>

namespace platform::linux {
namespace {

// Older kernel headers lack the name; the kernel has answered it since Linux 5.8.
constexpr unsigned MountIdMask = 0x1000; // STATX_MNT_ID

/// The mount ID of an open descriptor from /proc (kernels without STATX_MNT_ID); 0 when unknown.
std::uint64_t mountIdFromProc(int fd) {
    std::ifstream info("/proc/self/fdinfo/" + std::to_string(fd));
    std::string key;
    std::uint64_t value = 0;
    while (info >> key) {
        if (key == "mnt_id:" && info >> value)
            return value;
    }
    return 0;
}

/// Whether the loop device `name` (as /sys/block lists it) is bound to the file `device`/`inode`.
bool loopBacks(const std::string& name, std::uint64_t device, std::uint64_t inode) {
    const std::string sys = "/sys/block/" + name + "/loop";
    struct stat st {};
    if (::stat(sys.c_str(), &st) != 0)
        return false; // not bound to any file
    // The device's own account of its file: the identity it holds, whatever its path now is.
    if (const UniqueFd node(::open(("/dev/" + name).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)); node) {
        loop_info64 info {};
        if (::ioctl(node.get(), LOOP_GET_STATUS64, &info) != 0)
            return false;
        // The kernel's 32-bit device encoding: 12 bits of major, 20 of minor.
        const auto major = static_cast<unsigned>((info.lo_device & 0xfff00) >> 8);
        const auto minor = static_cast<unsigned>((info.lo_device & 0xff) | ((info.lo_device >> 12) & 0xfff00));
        return ::makedev(major, minor) == device && info.lo_inode == inode;
    }
    // Without access to the device node: the path sysfs names, taken only when it leads to the
    // same file.
    std::ifstream in(sys + "/backing_file");
    std::string path;
    return std::getline(in, path) && ::stat(path.c_str(), &st) == 0 && st.st_dev == device && st.st_ino == inode;
}

/// Whether `seen` says yes to some process, asked by its id ("1234") one process at a time.
bool anyProcess(const std::function<bool(const std::string& pid)>& seen) {
    DIR* proc = ::opendir("/proc");
    if (!proc)
        return false;
    bool found = false;
    while (const dirent* p = found ? nullptr : ::readdir(proc))
        if (p->d_name[0] >= '0' && p->d_name[0] <= '9')
            found = seen(p->d_name);
    ::closedir(proc);
    return found;
}

} // namespace

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
    if (this != &other)
        reset(other.release());
    return *this;
}

int UniqueFd::release() {
    const int fd = m_fd;
    m_fd = -1;
    return fd;
}

void UniqueFd::reset(int fd) {
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = fd;
}

uid_t actingUser() {
    const uid_t self = ::geteuid();
    if (self != 0)
        return self;
    const char* sudo = std::getenv("SUDO_UID");
    if (!sudo || !*sudo)
        return self;
    char* end = nullptr;
    errno = 0;
    const unsigned long uid = std::strtoul(sudo, &end, 10);
    return *end == 0 && errno == 0 && sudo[0] != '-' && uid < static_cast<unsigned long>(static_cast<uid_t>(-1))
               ? static_cast<uid_t>(uid)
               : self;
}

std::optional<Facts> factsAt(int at, const std::string& name, bool follow) {
    struct statx sx {};
    const int flags = (follow ? 0 : AT_SYMLINK_NOFOLLOW) | (name.empty() ? AT_EMPTY_PATH : 0) | AT_NO_AUTOMOUNT;
    if (::statx(at, name.c_str(), flags, STATX_BASIC_STATS | MountIdMask, &sx) != 0)
        return std::nullopt;
    Facts f;
    f.mode = sx.stx_mode;
    f.device = ::makedev(sx.stx_dev_major, sx.stx_dev_minor);
    f.inode = sx.stx_ino;
    f.links = sx.stx_nlink;
    f.size = sx.stx_size;
    f.owner = sx.stx_uid;
    f.modified = sx.stx_mtime.tv_sec;
    if (sx.stx_mask & MountIdMask) {
        f.mount = sx.stx_mnt_id;
    } else {
        const UniqueFd ref(::openat(at, name.c_str(), O_PATH | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW)));
        if (ref)
            f.mount = mountIdFromProc(ref.get());
    }
    return f;
}

FileInfo describe(const std::string& name, const Facts& f) {
    FileInfo fi;
    fi.name = name;
    fi.device = f.device;
    fi.index = f.inode;
    fi.mount = f.mount;
    fi.links = f.links;
    fi.modified = f.modified;
    fi.ownedByUser = f.owner == actingUser();
    fi.sharedFolder = S_ISDIR(f.mode) && (f.mode & S_ISVTX) && (f.mode & S_IWOTH);
    if (S_ISLNK(f.mode))
        fi.attributes |= Attr::ReparsePoint;
    else if (S_ISDIR(f.mode))
        fi.attributes |= Attr::Directory;
    else {
        fi.isRegular = S_ISREG(f.mode);
        fi.size = f.size;
        if (!fi.isRegular)
            fi.attributes |= Attr::System;
    }
    if (!(f.mode & S_IWUSR))
        fi.attributes |= Attr::ReadOnly;
    if (!name.empty() && name[0] == '.')
        fi.attributes |= Attr::Hidden;
    if (fi.attributes == 0)
        fi.attributes = Attr::Normal;
    return fi;
}

bool openInSomeProcess(std::uint64_t device, std::uint64_t inode, int ownFd) {
    const std::string self = std::to_string(::getpid());
    const std::string own = std::to_string(ownFd);
    return anyProcess([&](const std::string& pid) {
        DIR* fds = ::opendir(("/proc/" + pid + "/fd").c_str());
        if (!fds)
            return false; // another user's process, or gone
        bool found = false;
        while (const dirent* f = found ? nullptr : ::readdir(fds)) {
            if (f->d_name[0] == '.' || (pid == self && own == f->d_name))
                continue;
            struct stat st {};
            // stat (not lstat) on the fd link gives the open file itself.
            found = ::fstatat(::dirfd(fds), f->d_name, &st, 0) == 0 && st.st_dev == device && st.st_ino == inode;
        }
        ::closedir(fds);
        return found;
    });
}

bool mappedInSomeProcess(std::uint64_t device, std::uint64_t inode) {
    std::string line;
    return anyProcess([&](const std::string& pid) {
        // Each line: address perms offset major:minor inode [path]; the numbers name the file
        // whatever has become of its path.
        std::ifstream maps("/proc/" + pid + "/maps");
        while (std::getline(maps, line)) {
            unsigned major = 0, minor = 0;
            unsigned long long node = 0;
            if (std::sscanf(line.c_str(), "%*s %*s %*s %x:%x %llu", &major, &minor, &node) == 3 && node == inode &&
                ::makedev(major, minor) == device)
                return true;
        }
        return false;
    });
}

bool backsLoopDevice(std::uint64_t device, std::uint64_t inode) {
    DIR* block = ::opendir("/sys/block");
    if (!block)
        return false;
    bool found = false;
    while (const dirent* e = found ? nullptr : ::readdir(block))
        found = std::string_view(e->d_name).starts_with("loop") && loopBacks(e->d_name, device, inode);
    ::closedir(block);
    return found;
}

bool fileInUse(std::uint64_t device, std::uint64_t inode, int ownFd) {
    return openInSomeProcess(device, inode, ownFd) || mappedInSomeProcess(device, inode) ||
           backsLoopDevice(device, inode);
}

UniqueFd openFolderAt(int at, const std::string& name) {
    return UniqueFd(::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

UniqueFd openLocation(const std::string& path) {
    return UniqueFd(::open(path.c_str(), O_PATH | O_CLOEXEC));
}

std::string stateStamp(const struct stat& st) {
    return std::to_string(st.st_dev) + ":" + std::to_string(st.st_ino) + ":" + std::to_string(st.st_size) + ":" +
           std::to_string(st.st_mtim.tv_sec) + "." + std::to_string(st.st_mtim.tv_nsec);
}

std::string readProblem(ReadResult result, mode_t mode) {
    switch (result) {
    case ReadResult::Read: return "read";
    case ReadResult::Missing: return "does not exist";
    case ReadResult::Link: return "is a symbolic link";
    case ReadResult::TooLarge: return "is larger than such a file can be";
    case ReadResult::Failed: return "cannot be read";
    case ReadResult::NotRegular: break;
    }
    const char* kind = S_ISFIFO(mode) ? "a FIFO" : S_ISSOCK(mode) ? "a socket" : S_ISCHR(mode) || S_ISBLK(mode) ? "a device"
                                                  : S_ISDIR(mode) ? "a folder" : "not a plain file";
    return std::string("is ") + kind + ", not a regular file";
}

OpenedFile openRegularFile(int at, const std::string& name, bool followLink, int extraFlags) {
    OpenedFile opened;
    // A FIFO opened for reading without O_NONBLOCK waits for a writer that may never come, and a
    // terminal could become the controlling one: neither may happen to a file that is only read.
    const int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW) | extraFlags;
    opened.fd.reset(::openat(at, name.c_str(), flags));
    if (!opened.fd) {
        const int error = errno;
        opened.result = error == ENOENT ? ReadResult::Missing : error == ELOOP && !followLink ? ReadResult::Link
                                                                                              : ReadResult::Failed;
        // A socket cannot be opened at all (ENXIO): say what it is rather than that it failed.
        if (opened.result == ReadResult::Failed &&
            ::fstatat(at, name.c_str(), &opened.st, followLink ? 0 : AT_SYMLINK_NOFOLLOW) == 0 &&
            !S_ISREG(opened.st.st_mode) && !S_ISLNK(opened.st.st_mode))
            opened.result = ReadResult::NotRegular;
        errno = error;
        return opened;
    }
    if (::fstat(opened.fd.get(), &opened.st) != 0) {
        opened.fd.reset();
        return opened;
    }
    if (!S_ISREG(opened.st.st_mode)) {
        opened.fd.reset();
        opened.result = ReadResult::NotRegular;
        return opened;
    }
    opened.result = ReadResult::Read;
    return opened;
}

FileText readRegularFile(int at, const std::string& name, std::size_t limit, bool followLink) {
    FileText file;
    OpenedFile opened = openRegularFile(at, name, followLink);
    file.result = opened.result;
    file.st = opened.st;
    if (file.result != ReadResult::Read)
        return file;
    if (static_cast<std::uint64_t>(opened.st.st_size) > limit) {
        file.result = ReadResult::TooLarge;
        return file;
    }
    file.text.reserve(static_cast<std::size_t>(opened.st.st_size));
    char buf[65536];
    for (;;) {
        const ssize_t n = ::read(opened.fd.get(), buf, sizeof buf);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            file.result = ReadResult::Failed;
            file.text.clear();
            return file;
        }
        if (n == 0)
            break;
        file.text.append(buf, static_cast<std::size_t>(n));
        // A file still growing past the limit while it is read is refused as well.
        if (file.text.size() > limit) {
            file.result = ReadResult::TooLarge;
            file.text.clear();
            return file;
        }
    }
    return file;
}

} // namespace platform::linux
