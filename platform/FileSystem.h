#pragma once
// Folders and files: enumeration with a wildcard, attributes, deletion. No call follows a symbolic
// link: a link is reported as a link (attribute ReparsePoint) and never as the thing it points to.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace platform {

/// Attribute bits with the values Windows gives them; the Linux backend maps its own facts onto them.
namespace Attr {
constexpr std::uint32_t ReadOnly = 0x1;
constexpr std::uint32_t Hidden = 0x2;
constexpr std::uint32_t System = 0x4;
constexpr std::uint32_t Directory = 0x10;
constexpr std::uint32_t Archive = 0x20;
constexpr std::uint32_t Normal = 0x80;
constexpr std::uint32_t ReparsePoint = 0x400;
} // namespace Attr

struct FileInfo {
    std::string name;             ///< last path component
    std::uint32_t attributes = 0; ///< Attr bits
    std::uint64_t size = 0;       ///< bytes; 0 for folders
    std::uint64_t device = 0;     ///< filesystem identity (st_dev, the volume serial number)
    std::uint64_t index = 0;      ///< the file's number on its filesystem (inode, file index):
                                  ///< with `device`, which file this is
    std::uint64_t mount = 0;      ///< the mount it is reached through (mount ID; the volume on
                                  ///< Windows); differs from its folder's at a mount point
    std::uint64_t links = 1;      ///< names the file has (hard links); a file with more is never overwritten
    bool isRegular = false;       ///< a plain file (not a folder, link, device, socket, pipe)
    bool ownedByUser = false;     ///< owned by the user the program works for: the one running it,
                                  ///< or, run as root through sudo, the one who ran sudo
    bool sharedFolder = false;    ///< a folder every user may write in while each may remove only
                                  ///< their own entries (sticky and world-writable, as /tmp)
    std::int64_t modified = 0;    ///< seconds since 1970-01-01 UTC

    bool isDirectory() const { return attributes & Attr::Directory; }
    bool isLink() const { return attributes & Attr::ReparsePoint; }
    /// Whether `other` describes the same file (the same filesystem and file number).
    bool sameFileAs(const FileInfo& other) const { return device == other.device && index == other.index; }
};

class Folder;

/// What a folder listing itself says an entry is, without asking about the entry.
enum class EntryKind { Unknown, File, Directory, Link, Other };

class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// Calls `visit` for each entry of folder `dir` whose name matches `pattern` (the platform's
    /// wildcard rules; "*" matches all), in the order the system enumerates them, "." and ".."
    /// left out. `visit` returns false to stop early. Returns false when `dir` cannot be listed.
    virtual bool list(const std::string& dir, const std::string& pattern,
                      const std::function<bool(const FileInfo&)>& visit) = 0;
    /// Calls `visit` with the name and kind of each entry of folder `dir`, in the order the system
    /// enumerates them, "." and ".." left out, without querying any entry: a walk over a large tree
    /// asks about an entry only when the listing leaves its kind Unknown. Returns false when `dir`
    /// cannot be listed.
    virtual bool names(const std::string& dir,
                       const std::function<bool(const std::string& name, EntryKind kind)>& visit) = 0;
    /// Whether `name` matches the wildcard `pattern` by the platform's rules, as list() applies
    /// them ("*" and "*.*" match every name). An empty pattern matches nothing.
    virtual bool matches(const std::string& name, const std::string& pattern) const = 0;
    /// Facts about `path` itself (a link is described, not followed); empty when it does not exist.
    virtual std::optional<FileInfo> info(const std::string& path) = 0;
    /// Opens the folder `path` for a walk (see Folder.h). Links in the folders leading to it are
    /// followed, as the user named them; a link as the last component is not: null then, and when
    /// `path` is no folder.
    virtual std::unique_ptr<Folder> openFolder(const std::string& path) = 0;
    /// Deletes a file or a link (never its target). True when it is gone, also when it was already.
    virtual bool removeFile(const std::string& path) = 0;
    /// Deletes an empty folder. True when it is gone.
    virtual bool removeDirectory(const std::string& path) = 0;
    virtual bool createDirectory(const std::string& path) = 0;
    /// Clears read-only and hidden so that the file can be written and deleted (FILE_ATTRIBUTE_NORMAL).
    virtual bool makeNormal(const std::string& path) = 0;
    /// Whether some process has the file open, or the system holds it for a device (a loop
    /// device's backing file).
    virtual bool isInUse(const std::string& path) = 0;
    /// The path separator of this platform: '\\' or '/'.
    virtual char separator() const = 0;

    /// `folder` + separator() + `name`, with no doubled separator; `name` alone when `folder` is
    /// empty.
    std::string join(const std::string& folder, const std::string& name) const {
        const char sep = separator();
        if (folder.empty() || folder.back() == sep)
            return folder + name;
        return folder + sep + name;
    }
};

} // namespace platform
