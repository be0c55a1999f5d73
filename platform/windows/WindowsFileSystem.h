#pragma once
// Folders and files on Windows: the FindFirstFileExW family for listings, file attributes and a
// handle's file information for facts, DeleteFileW / RemoveDirectoryW for deletion. A reparse point
// (symbolic link, junction, mount point) is reported as a link and never as a folder, no listing
// enters one, and deleting one removes the link itself, never what it points to.

#include "platform/FileSystem.h"

namespace platform::windows {

class WindowsFileSystem final : public FileSystem {
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
    char separator() const override { return '\\'; }
};

/// Whether `name` matches the Windows wildcard `pattern` ('*' any run, '?' one character), without
/// regard to letter case. "*" and "*.*" match every name; an empty pattern matches nothing.
bool wildcardMatch(const std::wstring& name, const std::wstring& pattern);

} // namespace platform::windows
