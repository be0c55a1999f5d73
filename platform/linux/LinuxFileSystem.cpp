#include "platform/linux/LinuxFileSystem.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/LinuxFolder.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

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
        const auto facts = factsAt(fd, e->d_name, false);
        if (!facts)
            continue; // gone between readdir and stat
        if (!visit(describe(name, *facts)))
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
        if (!visit(n, kindOfListed(e->d_type)))
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
    const auto facts = factsAt(AT_FDCWD, path, false);
    if (!facts)
        return std::nullopt;
    return describe(lastComponent(path), *facts);
}

std::unique_ptr<Folder> LinuxFileSystem::openFolder(const std::string& path) {
    return LinuxFolder::open(AT_FDCWD, path, path);
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
    return makeNormalAt(AT_FDCWD, path);
}

bool LinuxFileSystem::isInUse(const std::string& path) {
    const auto facts = factsAt(AT_FDCWD, path, false);
    return facts && fileInUse(facts->device, facts->inode);
}

} // namespace platform::linux
