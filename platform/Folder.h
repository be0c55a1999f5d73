#pragma once
// An open folder: where every walk and wipe starts. Its entries are reached by name relative to
// the open folder, never through a path's text, so a folder renamed, or replaced by a link, while a
// walk goes on cannot lead the walk anywhere else; and no call follows a link in an entry's name.
// A walk stays on its own mount: an entry whose mount differs from its folder's (FileInfo::mount)
// is a mount point, bind mounts of the same filesystem included, and is never entered or written.
//
// Linux: a descriptor and the *at calls (openat, fstatat, unlinkat, O_NOFOLLOW, O_DIRECTORY).
// Windows: a handle to the folder opened without delete sharing, so that it cannot be moved or
// replaced while it is open, with its entries reached below that handle.

#include "platform/FileSystem.h"
#include "platform/RawFiles.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace platform {

class Folder {
public:
    virtual ~Folder() = default;

    /// The path the folder was opened by, for messages.
    virtual const std::string& path() const = 0;
    /// Facts about the folder itself (its mount among them), as they are now.
    virtual FileInfo self() const = 0;
    /// Calls `visit` with facts about each entry itself (a link described, not followed), in the
    /// order the system enumerates them, "." and ".." left out; `visit` returns false to stop.
    /// False when the folder cannot be listed.
    virtual bool list(const std::function<bool(const FileInfo&)>& visit) = 0;
    /// Facts about the entry `name` itself; empty when there is none.
    virtual std::optional<FileInfo> entry(const std::string& name) = 0;
    /// Opens the subfolder `name`; null when it is not a folder (a link to one included).
    virtual std::unique_ptr<Folder> openFolder(const std::string& name) = 0;
    /// Opens the plain file `name` as RawFiles::open does (read-write, exclusively, never through a
    /// link, never a file with other hard links), created when missing only if `create`. Null on
    /// failure, with RawFiles::lastError() set.
    virtual std::unique_ptr<RawFile> openFile(const std::string& name, bool create) = 0;
    /// Deletes the file or link `name` (never a link's target). True when it is gone, also when it
    /// already was.
    virtual bool removeFile(const std::string& name) = 0;
    /// Deletes the empty subfolder `name`. True when it is gone.
    virtual bool removeFolder(const std::string& name) = 0;
    /// Clears read-only and hidden on `name` so that it can be written and deleted; a link is left
    /// as it is (it has no attributes of its own to clear), never followed.
    virtual bool makeNormal(const std::string& name) = 0;
    /// The system's handle of the open folder (a descriptor, a HANDLE), through which Drives answers
    /// questions about the folder itself; -1 where no folder is really held open.
    virtual std::intptr_t nativeHandle() const { return -1; }
};

} // namespace platform
