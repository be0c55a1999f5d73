#pragma once
// Folders and files on Linux, through file descriptors and the *at calls so that no symbolic link
// is ever followed. Wildcards follow fnmatch(3).

#include "platform/FileSystem.h"
#include "platform/Folder.h"

namespace platform::linux {

class LinuxFileSystem final : public FileSystem {
public:
    bool list(const std::string& dir, const std::string& pattern,
              const std::function<bool(const FileInfo&)>& visit) override;
    bool names(const std::string& dir,
               const std::function<bool(const std::string& name, EntryKind kind)>& visit) override;
    bool matches(const std::string& name, const std::string& pattern) const override;
    std::optional<FileInfo> info(const std::string& path) override;
    std::unique_ptr<Folder> openFolder(const std::string& path) override;
    bool removeFile(const std::string& path) override;
    bool removeDirectory(const std::string& path) override;
    bool createDirectory(const std::string& path) override;
    bool makeNormal(const std::string& path) override;
    bool isInUse(const std::string& path) override;
    char separator() const override { return '/'; }
};

} // namespace platform::linux
