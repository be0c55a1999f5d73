#pragma once
// An open folder on Linux: a descriptor opened with O_DIRECTORY and O_NOFOLLOW, its entries reached
// with fstatat/statx, openat and unlinkat relative to it.

#include "platform/Folder.h"
#include "platform/linux/Descriptors.h"

namespace platform::linux {

class LinuxFolder final : public Folder {
public:
    /// Opens folder `name` in folder `at` (AT_FDCWD with a path), not through a link; null when
    /// that is no folder.
    static std::unique_ptr<LinuxFolder> open(int at, const std::string& name, std::string shownPath);

    const std::string& path() const override { return m_path; }
    FileInfo self() const override;
    bool list(const std::function<bool(const FileInfo&)>& visit) override;
    bool names(const std::function<bool(const std::string& name, EntryKind kind)>& visit) override;
    std::optional<FileInfo> entry(const std::string& name) override;
    std::unique_ptr<Folder> openFolder(const std::string& name) override;
    using Folder::openFile;
    std::unique_ptr<RawFile> openFile(const std::string& name, Create create) override;
    std::unique_ptr<RawFile> openForOverwrite(const std::string& name, Refusal& why) override;
    bool isInUse(const std::string& name) override;
    bool removeFile(const std::string& name) override;
    bool removeFolder(const std::string& name) override;
    bool makeNormal(const std::string& name) override;
    std::intptr_t nativeHandle() const override { return m_fd.get(); }

private:
    /// Calls `visit` with each entry's name and the listing's type for it ("." and ".." left out).
    bool readNames(const std::function<bool(const char* name, unsigned char type)>& visit) const;
    LinuxFolder(UniqueFd fd, std::string path) : m_fd(std::move(fd)), m_path(std::move(path)) {}

    UniqueFd m_fd;
    std::string m_path;
};

/// The kind of an entry as a directory listing gives it (dirent's d_type).
EntryKind kindOfListed(unsigned char type);

/// Clears read-only on `name` in folder `at` without following a link (a link is left alone).
bool makeNormalAt(int at, const std::string& name);

} // namespace platform::linux
