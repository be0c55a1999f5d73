#include "platform/linux/LinuxFolder.h"

#include "platform/linux/LinuxRawFiles.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {

std::unique_ptr<LinuxFolder> LinuxFolder::open(int at, const std::string& name, std::string shownPath) {
    UniqueFd fd = openFolderAt(at, name.empty() ? "." : name);
    if (!fd)
        return nullptr;
    return std::unique_ptr<LinuxFolder>(new LinuxFolder(std::move(fd), std::move(shownPath)));
}

FileInfo LinuxFolder::self() const {
    const auto facts = factsAt(m_fd.get(), "", false);
    return facts ? describe(m_path, *facts) : FileInfo{};
}

bool LinuxFolder::readNames(const std::function<bool(const char* name, unsigned char type)>& visit) const {
    // A listing of its own, so that this folder's descriptor keeps its place for the *at calls.
    UniqueFd copy(::openat(m_fd.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    DIR* d = copy ? ::fdopendir(copy.get()) : nullptr;
    if (!d)
        return false;
    copy.release();
    while (const dirent* e = ::readdir(d)) {
        const char* n = e->d_name;
        if (n[0] == '.' && (n[1] == 0 || (n[1] == '.' && n[2] == 0)))
            continue;
        if (!visit(n, e->d_type))
            break;
    }
    ::closedir(d);
    return true;
}

bool LinuxFolder::list(const std::function<bool(const FileInfo&)>& visit) {
    return readNames([&](const char* name, unsigned char) {
        const auto facts = factsAt(m_fd.get(), name, false);
        return !facts || visit(describe(name, *facts)); // gone between the listing and the question
    });
}

bool LinuxFolder::names(const std::function<bool(const std::string& name, EntryKind kind)>& visit) {
    return readNames([&](const char* name, unsigned char type) { return visit(name, kindOfListed(type)); });
}

std::optional<FileInfo> LinuxFolder::entry(const std::string& name) {
    const auto facts = factsAt(m_fd.get(), name, false);
    if (!facts)
        return std::nullopt;
    return describe(name, *facts);
}

std::unique_ptr<Folder> LinuxFolder::openFolder(const std::string& name) {
    std::string shown = m_path;
    if (shown.empty() || shown.back() != '/')
        shown += '/';
    return open(m_fd.get(), name, shown + name);
}

std::unique_ptr<RawFile> LinuxFolder::openFile(const std::string& name, Create create) {
    return openRawAt(m_fd.get(), name, create != Create::Never, create == Create::Exclusive);
}

std::unique_ptr<RawFile> LinuxFolder::openForOverwrite(const std::string& name, Refusal& why) {
    const auto refuse = [&why](Refusal reason) -> std::unique_ptr<RawFile> {
        why = reason;
        return nullptr;
    };
    // The entry itself, pinned without opening it for reading or writing: a pipe is not waited on,
    // a device is not started, and whatever takes the name from here on is not what gets written.
    const UniqueFd entry(::openat(m_fd.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!entry)
        return refuse(errno == ENOENT ? Refusal::NotAFile : Refusal::CannotOpen);
    const auto facts = factsAt(entry.get(), "", false);
    const auto folder = factsAt(m_fd.get(), "", false);
    if (!facts || !folder)
        return refuse(Refusal::CannotOpen);
    if (!S_ISREG(facts->mode))
        return refuse(Refusal::NotAFile);
    if (facts->mount != folder->mount)
        return refuse(Refusal::MountPoint);
    if (facts->links > 1)
        return refuse(Refusal::OtherNames);
    if (fileInUse(facts->device, facts->inode, entry.get()))
        return refuse(Refusal::InUse);
    // Only now, with the file known to have this one name, may it be made writable; it gets its
    // own permissions back when closed, since a file overwritten in place stays the user's file.
    const std::string self = "/proc/self/fd/" + std::to_string(entry.get());
    const int own = static_cast<int>(facts->mode & 07777);
    const bool madeWritable = !(facts->mode & S_IWUSR);
    if (madeWritable && ::chmod(self.c_str(), static_cast<mode_t>(own) | S_IRUSR | S_IWUSR) != 0)
        return refuse(Refusal::CannotOpen);
    // Reopened through the pinned descriptor: the very file checked above.
    auto file = adoptRaw(::open(self.c_str(), O_RDWR | O_CLOEXEC), madeWritable ? own : -1);
    why = file ? Refusal::None : errno == EBUSY ? Refusal::InUse : Refusal::CannotOpen;
    if (!file && madeWritable)
        ::chmod(self.c_str(), static_cast<mode_t>(own));
    return file;
}

bool LinuxFolder::isInUse(const std::string& name) {
    const auto facts = factsAt(m_fd.get(), name, false);
    return facts && S_ISREG(facts->mode) && fileInUse(facts->device, facts->inode);
}

bool LinuxFolder::removeFile(const std::string& name) {
    const auto facts = factsAt(m_fd.get(), name, false);
    if (facts && S_ISDIR(facts->mode)) {
        errno = EISDIR;
        return false;
    }
    return ::unlinkat(m_fd.get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

bool LinuxFolder::removeFolder(const std::string& name) {
    return ::unlinkat(m_fd.get(), name.c_str(), AT_REMOVEDIR) == 0 || errno == ENOENT;
}

bool LinuxFolder::makeNormal(const std::string& name) {
    return makeNormalAt(m_fd.get(), name);
}

EntryKind kindOfListed(unsigned char type) {
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

bool makeNormalAt(int at, const std::string& name) {
    // The entry itself, pinned by an O_PATH descriptor: a link put in its place after this point
    // is not what gets its mode changed.
    const UniqueFd entry(::openat(at, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!entry)
        return false;
    struct stat st {};
    if (::fstat(entry.get(), &st) != 0)
        return false;
    if (S_ISLNK(st.st_mode))
        return true; // a link has no permissions of its own
    const mode_t mode = (st.st_mode & 07777) | S_IRUSR | S_IWUSR | (S_ISDIR(st.st_mode) ? S_IXUSR : 0);
    if (mode == (st.st_mode & 07777))
        return true;
    // fchmod refuses O_PATH descriptors; the descriptor's /proc entry reaches the same object.
    const std::string self = "/proc/self/fd/" + std::to_string(entry.get());
    return ::chmod(self.c_str(), mode) == 0;
}

} // namespace platform::linux
