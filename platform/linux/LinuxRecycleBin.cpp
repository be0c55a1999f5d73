#include "platform/linux/LinuxRecycleBin.h"

#include "platform/linux/Descriptors.h"
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
#include <utility>

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

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string percentDecoded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? hexValue(text[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(text[i + 2]) : -1;
        if (low >= 0) {
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

/// The largest .trashinfo file read: a real one holds a path and a date.
constexpr std::size_t TrashInfoLimit = 64 * 1024;

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

/// Where the item `name` of a bin came from, by its record in the bin's `info` folder; a record
/// that is no regular file is not read and goes to `refused`.
std::string originalPath(int info, const std::string& infoFolder, const std::string& name, const std::string& top,
                         std::vector<RefusedRecord>& refused) {
    const std::string record = name + ".trashinfo";
    const FileText file = readRegularFile(info, record, TrashInfoLimit);
    if (file.result == ReadResult::Read)
        return trashInfoOriginalPath(file.text, top);
    if (file.result != ReadResult::Missing)
        refused.push_back({infoFolder + "/" + record, readProblem(file.result, file.st.st_mode) + "; not read"});
    return {};
}

std::vector<Bin> readBins(const std::vector<std::string>& folders, const std::string& uid,
                          std::vector<RefusedRecord>& refused) {
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
                if (info)
                    item.originalPath = originalPath(info.get(), folder + "/info", name, topOf(folder, uid), refused);
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
void removeLeftovers(const std::string& folder, Remover& remover) {
    const DirFd trash(folder);
    const auto top = trash ? LinuxFolder::open(trash.get(), "", folder) : nullptr;
    if (!top)
        return;
    remover.removeEntry(*top, "directorysizes");
    const auto info = LinuxFolder::open(trash.get(), "info", folder + "/info");
    const DirFd files(trash.get(), "files");
    if (!info)
        return;
    const std::string suffix = ".trashinfo";
    for (const std::string& name : entryNames(static_cast<int>(info->nativeHandle()))) {
        if (name.size() <= suffix.size() || name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        struct stat st {};
        const std::string item = name.substr(0, name.size() - suffix.size());
        if (!files || ::fstatat(files.get(), item.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
            remover.removeEntry(*info, name);
    }
}

} // namespace

std::string trashInfoOriginalPath(std::string_view text, const std::string& top) {
    bool inGroup = false;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.starts_with('[')) {
            inGroup = line == "[Trash Info]";
            continue;
        }
        if (!inGroup || !line.starts_with("Path="))
            continue;
        std::string path = percentDecoded(line.substr(5));
        // No path holds a NUL: a record that decodes to one records nothing usable.
        if (path.empty() || path.find('\0') != std::string::npos)
            return {};
        if (path[0] != '/' && !top.empty())
            path = top + "/" + path;
        return path;
    }
    return {};
}

LinuxRecycleBin::LinuxRecycleBin(Environment env) : m_env(std::move(env)) {}

void LinuxRecycleBin::refuse(const std::string& path, const std::string& reason) {
    for (const RefusedRecord& known : m_refused)
        if (known.path == path)
            return;
    m_refused.push_back({path, reason});
}

std::vector<RefusedRecord> LinuxRecycleBin::takeRefused() {
    return std::exchange(m_refused, {});
}


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
    std::vector<RefusedRecord> refused;
    for (const Bin& bin : readBins(trashFolders(root), std::to_string(::getuid()), refused))
        all.insert(all.end(), bin.items.begin(), bin.items.end());
    for (const RefusedRecord& record : refused)
        refuse(record.path, record.reason);
    return all;
}

bool LinuxRecycleBin::empty(const std::string& root, unsigned flags, RecycleBinUi& ui) {
    const std::vector<std::string> folders = trashFolders(root);
    std::vector<RefusedRecord> refused;
    const std::vector<Bin> bins = readBins(folders, std::to_string(::getuid()), refused);
    for (const RefusedRecord& record : refused)
        refuse(record.path, record.reason);
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
        const auto info = trash ? LinuxFolder::open(trash.get(), "info", bin.folder + "/info") : nullptr;
        if (!files) {
            ok = ok && bin.items.empty();
            continue;
        }
        for (const std::string& name : bin.names) {
            const bool removed = ui.remover().removeEntry(*files, name);
            if (removed && info)
                ui.remover().removeEntry(*info, name + ".trashinfo");
            ok = ok && removed;
            if (!(flags & EmptyFlags::NoProgressUi))
                ui.progress(++done, count);
        }
    }
    for (const std::string& folder : folders)
        removeLeftovers(folder, ui.remover());
    // The desktop's sound for an emptied trash, where its sound player is installed; without one
    // there is no sound to play and the flag changes nothing.
    if (count > 0 && !(flags & EmptyFlags::NoSound))
        spawnDetached("canberra-gtk-play", {"--id=trash-empty", "--description=Trash emptied"});
    return ok;
}

std::vector<std::string> LinuxRecycleBin::recentDocuments() {
    const std::string path = recentlyUsedPath();
    RecentlyUsedRead read = readRecentlyUsed(path);
    if (!read.problem.empty())
        refuse(path, read.problem);
    return std::move(read.uris);
}

bool LinuxRecycleBin::clearRecentDocuments(Remover& remover) {
    const std::string path = recentlyUsedPath();
    std::string problem;
    const bool cleared = clearRecentlyUsed(path, remover, &problem);
    if (!problem.empty())
        refuse(path, problem);
    return cleared;
}

} // namespace platform::linux
