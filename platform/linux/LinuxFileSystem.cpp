#include "platform/linux/LinuxFileSystem.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

FileInfo describe(const std::string& name, const struct stat& st) {
    FileInfo fi;
    fi.name = name;
    fi.device = st.st_dev;
    fi.links = st.st_nlink;
    fi.modified = st.st_mtim.tv_sec;
    fi.ownedByUser = st.st_uid == ::geteuid();
    if (S_ISLNK(st.st_mode))
        fi.attributes |= Attr::ReparsePoint;
    else if (S_ISDIR(st.st_mode))
        fi.attributes |= Attr::Directory;
    else {
        fi.isRegular = S_ISREG(st.st_mode);
        fi.size = static_cast<std::uint64_t>(st.st_size);
        if (!fi.isRegular)
            fi.attributes |= Attr::System;
    }
    if (!(st.st_mode & S_IWUSR))
        fi.attributes |= Attr::ReadOnly;
    if (!name.empty() && name[0] == '.')
        fi.attributes |= Attr::Hidden;
    if (fi.attributes == 0)
        fi.attributes = Attr::Normal;
    return fi;
}

std::string lastComponent(const std::string& path) {
    std::string p = path;
    while (p.size() > 1 && p.back() == '/')
        p.pop_back();
    const auto slash = p.rfind('/');
    return slash == std::string::npos ? p : p.substr(slash + 1);
}

/// Opens a folder for listing without following a link to it.
DIR* openListing(const std::string& dir) {
    const int fd = ::open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    DIR* d = ::fdopendir(fd);
    if (!d)
        ::close(fd);
    return d;
}

EntryKind kindOf(unsigned char type) {
    switch (type) {
    case DT_REG:
        return EntryKind::File;
    case DT_DIR:
        return EntryKind::Directory;
    case DT_LNK:
        return EntryKind::Link;
    case DT_UNKNOWN:
        return EntryKind::Unknown;
    default:
        return EntryKind::Other;
    }
}

} // namespace

bool LinuxFileSystem::list(const std::string& dir, const std::string& pattern,
                           const std::function<bool(const FileInfo&)>& visit) {
    DIR* d = openListing(dir);
    if (!d)
        return false;
    const int fd = ::dirfd(d);
    while (const dirent* e = ::readdir(d)) {
        const std::string name = e->d_name;
        if (name == "." || name == "..")
            continue;
        if (!pattern.empty() && !matches(name, pattern))
            continue;
        struct stat st {};
        if (::fstatat(fd, e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            continue; // gone between readdir and stat
        if (!visit(describe(name, st)))
            break;
    }
    ::closedir(d);
    return true;
}

bool LinuxFileSystem::names(const std::string& dir,
                            const std::function<bool(const std::string& name, EntryKind kind)>& visit) {
    DIR* d = openListing(dir);
    if (!d)
        return false;
    while (const dirent* e = ::readdir(d)) {
        const char* n = e->d_name;
        if (n[0] == '.' && (n[1] == 0 || (n[1] == '.' && n[2] == 0)))
            continue;
        if (!visit(n, kindOf(e->d_type)))
            break;
    }
    ::closedir(d);
    return true;
}

bool LinuxFileSystem::matches(const std::string& name, const std::string& pattern) const {
    if (pattern.empty())
        return false;
    return pattern == "*" || pattern == "*.*" || ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

std::optional<FileInfo> LinuxFileSystem::info(const std::string& path) {
    struct stat st {};
    if (::fstatat(AT_FDCWD, path.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return describe(lastComponent(path), st);
}

bool LinuxFileSystem::removeFile(const std::string& path) {
    struct stat st {};
    if (::fstatat(AT_FDCWD, path.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode)) {
        errno = EISDIR;
        return false;
    }
    return ::unlinkat(AT_FDCWD, path.c_str(), 0) == 0 || errno == ENOENT;
}

bool LinuxFileSystem::removeDirectory(const std::string& path) {
    return ::unlinkat(AT_FDCWD, path.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT;
}

bool LinuxFileSystem::createDirectory(const std::string& path) {
    return ::mkdirat(AT_FDCWD, path.c_str(), 0700) == 0;
}

bool LinuxFileSystem::makeNormal(const std::string& path) {
    struct stat st {};
    if (::fstatat(AT_FDCWD, path.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (S_ISLNK(st.st_mode))
        return true; // a link has no permissions of its own
    return ::fchmodat(AT_FDCWD, path.c_str(), (st.st_mode & 07777) | S_IRUSR | S_IWUSR, 0) == 0;
}

bool LinuxFileSystem::isInUse(const std::string& path) {
    struct stat target {};
    if (::fstatat(AT_FDCWD, path.c_str(), &target, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    DIR* proc = ::opendir("/proc");
    if (!proc)
        return false;
    bool found = false;
    while (!found) {
        const dirent* p = ::readdir(proc);
        if (!p)
            break;
        if (p->d_name[0] < '0' || p->d_name[0] > '9')
            continue;
        const std::string fdDir = std::string("/proc/") + p->d_name + "/fd";
        DIR* fds = ::opendir(fdDir.c_str());
        if (!fds)
            continue; // another user's process, or gone
        while (const dirent* f = ::readdir(fds)) {
            if (f->d_name[0] == '.')
                continue;
            struct stat st {};
            // stat (not lstat) on the fd link gives the open file itself.
            if (::fstatat(::dirfd(fds), f->d_name, &st, 0) == 0 && st.st_dev == target.st_dev &&
                st.st_ino == target.st_ino) {
                found = true;
                break;
            }
        }
        ::closedir(fds);
    }
    ::closedir(proc);
    return found;
}

} // namespace platform::linux
