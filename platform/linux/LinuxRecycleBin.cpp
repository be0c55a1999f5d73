#include "platform/linux/LinuxRecycleBin.h"

#include "platform/linux/LinuxFolder.h"
#include "platform/linux/LinuxShell.h"
#include "platform/linux/MountTable.h"
#include "platform/linux/RecentlyUsed.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

/// A folder opened without following a link in its last component; closed with the object.
class DirFd {
public:
    DirFd(int at, const std::string& name) : m_fd(::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {}
    explicit DirFd(const std::string& path) : DirFd(AT_FDCWD, path) {}
    ~DirFd() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    DirFd(const DirFd&) = delete;
    DirFd& operator=(const DirFd&) = delete;
    int get() const { return m_fd; }
    explicit operator bool() const { return m_fd >= 0; }

private:
    int m_fd;
};

/// The names in the open folder `fd`, "." and ".." left out.
std::vector<std::string> entryNames(int fd) {
    std::vector<std::string> names;
    const int copy = ::dup(fd);
    if (copy < 0)
        return names;
    DIR* dir = ::fdopendir(copy);
    if (!dir) {
        ::close(copy);
        return names;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(dir);
    return names;
}

std::uint64_t treeSize(int at, const std::string& name, dev_t device) {
    struct stat st {};
    if (::fstatat(at, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return 0;
    if (S_ISREG(st.st_mode))
        return static_cast<std::uint64_t>(st.st_size);
    if (!S_ISDIR(st.st_mode) || st.st_dev != device)
        return 0;
    const DirFd dir(at, name);
    std::uint64_t total = 0;
    if (dir)
        for (const std::string& child : entryNames(dir.get()))
            total += treeSize(dir.get(), child, device);
    return total;
}

bool isRealFolder(const std::string& path, bool needSticky = false) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && (!needSticky || (st.st_mode & S_ISVTX));
}

std::string percentDecoded(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
            std::isxdigit(static_cast<unsigned char>(text[i + 2]))) {
            out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

/// The Path= of a .trashinfo file in `info`, made absolute against the filesystem's `top`.
std::string originalPath(int info, const std::string& name, const std::string& top) {
    const int fd = ::openat(info, (name + ".trashinfo").c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return {};
    std::string text;
    char buf[4096];
    for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0 && text.size() < 65536;)
        text.append(buf, static_cast<std::size_t>(n));
    ::close(fd);
    const std::size_t at = text.find("\nPath=");
    if (at == std::string::npos)
        return {};
    const std::size_t end = text.find('\n', at + 1);
    std::string path = percentDecoded(text.substr(at + 6, end == std::string::npos ? std::string::npos : end - at - 6));
    if (!path.empty() && path[0] != '/' && !top.empty())
        path = top + "/" + path;
    return path;
}

/// The top of the filesystem a per-mount trash folder belongs to ("" for the home trash, whose
/// entries record absolute paths).
std::string topOf(const std::string& trash, const std::string& uid) {
    const std::string perUser = "/.Trash-" + uid;
    const std::string shared = "/.Trash/" + uid;
    for (const std::string& tail : {perUser, shared})
        if (trash.size() > tail.size() && trash.compare(trash.size() - tail.size(), tail.size(), tail) == 0)
            return trash.substr(0, trash.size() - tail.size());
    return {};
}

struct Bin {
    std::string folder;
    std::vector<TrashItem> items;
    std::vector<std::string> names;
};

std::vector<Bin> readBins(const std::vector<std::string>& folders, const std::string& uid) {
    std::vector<Bin> bins;
    for (const std::string& folder : folders) {
        Bin bin{folder, {}, {}};
        const DirFd trash(folder);
        if (!trash)
            continue;
        const DirFd files(trash.get(), "files");
        const DirFd info(trash.get(), "info");
        struct stat st {};
        if (files && ::fstat(files.get(), &st) == 0) {
            for (const std::string& name : entryNames(files.get())) {
                TrashItem item;
                item.path = folder + "/files/" + name;
                item.originalPath = info ? originalPath(info.get(), name, topOf(folder, uid)) : std::string();
                item.bytes = treeSize(files.get(), name, st.st_dev);
                bin.items.push_back(item);
                bin.names.push_back(name);
            }
        }
        bins.push_back(std::move(bin));
    }
    return bins;
}

/// What remains besides the items: info files of items already gone and the size cache.
void removeLeftovers(const std::string& folder) {
    const DirFd trash(folder);
    if (!trash)
        return;
    ::unlinkat(trash.get(), "directorysizes", 0);
    const DirFd info(trash.get(), "info");
    const DirFd files(trash.get(), "files");
    if (!info)
        return;
    const std::string suffix = ".trashinfo";
    for (const std::string& name : entryNames(info.get())) {
        if (name.size() <= suffix.size() || name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        struct stat st {};
        const std::string item = name.substr(0, name.size() - suffix.size());
        if (!files || ::fstatat(files.get(), item.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
            ::unlinkat(info.get(), name.c_str(), 0);
    }
}

} // namespace

LinuxRecycleBin::LinuxRecycleBin(Environment env) : m_env(std::move(env)) {}


std::vector<std::string> LinuxRecycleBin::trashFolders(const std::string& root) const {
    const std::string uid = std::to_string(::getuid());
    std::vector<std::string> tops;
    for (const Mount& mount : readMounts(m_env.mountInfo))
        if (isRealFilesystem(mount))
            tops.push_back(mount.mountPoint);
    std::vector<std::string> candidates{m_env.dataHome + "/Trash"};
    for (const std::string& top : tops) {
        const std::string base = top == "/" ? std::string() : top;
        if (isRealFolder(base + "/.Trash", true))
            candidates.push_back(base + "/.Trash/" + uid);
        candidates.push_back(base + "/.Trash-" + uid);
    }

    // A root names one filesystem: a drive of the Wine prefix or any path on it.
    std::string rootPath = root;
    if (root.size() >= 2 && root[1] == ':' && std::isalpha(static_cast<unsigned char>(root[0]))) {
        const char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(root[0])));
        rootPath = letter == 'c' ? m_env.winePrefix + "/drive_c" : m_env.winePrefix + "/dosdevices/" + letter + ":";
    }
    struct stat rootStat {};
    if (!root.empty() && ::stat(rootPath.c_str(), &rootStat) != 0)
        return {};

    std::vector<std::string> folders;
    std::vector<std::pair<dev_t, ino_t>> seen;
    for (const std::string& folder : candidates) {
        struct stat st {};
        if (!isRealFolder(folder) || ::stat(folder.c_str(), &st) != 0)
            continue;
        if (!root.empty() && st.st_dev != rootStat.st_dev)
            continue;
        const std::pair<dev_t, ino_t> id{st.st_dev, st.st_ino};
        if (std::find(seen.begin(), seen.end(), id) != seen.end())
            continue;
        seen.push_back(id);
        folders.push_back(folder);
    }
    return folders;
}

std::vector<TrashItem> LinuxRecycleBin::items(const std::string& root) {
    std::vector<TrashItem> all;
    for (const Bin& bin : readBins(trashFolders(root), std::to_string(::getuid())))
        all.insert(all.end(), bin.items.begin(), bin.items.end());
    return all;
}

bool LinuxRecycleBin::empty(const std::string& root, unsigned flags, RecycleBinUi& ui) {
    const std::vector<std::string> folders = trashFolders(root);
    const std::vector<Bin> bins = readBins(folders, std::to_string(::getuid()));
    std::size_t count = 0;
    std::uint64_t bytes = 0;
    for (const Bin& bin : bins) {
        count += bin.items.size();
        for (const TrashItem& item : bin.items)
            bytes += item.bytes;
    }
    if (count > 0 && !(flags & EmptyFlags::NoConfirmation) && !ui.confirmEmpty(count, bytes))
        return false;

    bool ok = true;
    std::size_t done = 0;
    for (const Bin& bin : bins) {
        const DirFd trash(bin.folder);
        const auto files = trash ? LinuxFolder::open(trash.get(), "files", bin.folder + "/files") : nullptr;
        const DirFd info(trash.get(), "info");
        if (!files) {
            ok = ok && bin.items.empty();
            continue;
        }
        for (const std::string& name : bin.names) {
            const bool removed = ui.removeItem(*files, name);
            if (removed && info)
                ::unlinkat(info.get(), (name + ".trashinfo").c_str(), 0);
            ok = ok && removed;
            if (!(flags & EmptyFlags::NoProgressUi))
                ui.progress(++done, count);
        }
    }
    for (const std::string& folder : folders)
        removeLeftovers(folder);
    // The desktop's sound for an emptied trash, where its sound player is installed; without one
    // there is no sound to play and the flag changes nothing.
    if (count > 0 && !(flags & EmptyFlags::NoSound))
        spawnDetached("canberra-gtk-play", {"--id=trash-empty", "--description=Trash emptied"});
    return ok;
}

std::vector<std::string> LinuxRecycleBin::recentDocuments() {
    return recentlyUsedUris(recentlyUsedPath());
}

bool LinuxRecycleBin::clearRecentDocuments() {
    return clearRecentlyUsed(recentlyUsedPath());
}

} // namespace platform::linux
