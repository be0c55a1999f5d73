#pragma once
// An open folder on Windows: a handle opened without delete sharing, so that the folder cannot be
// renamed, moved or replaced while a walk is inside it, with every entry reached below that handle
// by its name alone (NtCreateFile with the folder as root) and the listing read from the handle
// itself (GetFileInformationByHandleEx). Entries are always opened as themselves: a symbolic link,
// junction or mount point is described and deleted, never entered or written through. A file's
// alternate data streams are listed from a handle to the file and opened below that handle.

#include "platform/Folder.h"

#include <windows.h>

#include <memory>
#include <string>

namespace platform::windows {

class WindowsFolder final : public Folder {
public:
    /// Opens the folder `path`; links in the folders leading to it are followed as named, but not
    /// a link as the last component. Null when that is no folder (Win32 error set).
    static std::unique_ptr<WindowsFolder> open(const std::string& path);
    ~WindowsFolder() override;
    WindowsFolder(const WindowsFolder&) = delete;
    WindowsFolder& operator=(const WindowsFolder&) = delete;

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
    std::vector<std::string> extraStreams(const std::string& name) override;
    std::unique_ptr<RawFile> openStream(const std::string& name, const std::string& stream) override;
    bool removeFile(const std::string& name) override;
    bool removeFolder(const std::string& name) override;
    bool makeNormal(const std::string& name) override;
    bool setMarks(const std::string& name, std::uint32_t attributes) override;
    std::intptr_t nativeHandle() const override { return reinterpret_cast<std::intptr_t>(m_handle); }

private:
    WindowsFolder(HANDLE handle, std::string path, bool isRoot) : m_handle(handle), m_path(std::move(path)), m_isRoot(isRoot) {}
    /// Sets the attributes of `name` to `marks` alone (normal when none); a link is left as it is.
    bool setAttributes(const std::string& name, DWORD marks);

    HANDLE m_handle;
    std::string m_path;
    bool m_isRoot; ///< a drive's root, which Wine may mark as a reparse point
};

} // namespace platform::windows
