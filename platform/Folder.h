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
#include <vector>

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
    /// Calls `visit` with the name and kind of each entry as the listing alone tells them (see
    /// FileSystem::names), in the order the system enumerates them, "." and ".." left out, asking
    /// about no entry where the system's listing says what it is; `visit` returns false to stop.
    /// False when the folder cannot be listed.
    virtual bool names(const std::function<bool(const std::string& name, EntryKind kind)>& visit) {
        return list([&](const FileInfo& fi) {
            return visit(fi.name, fi.isLink()        ? EntryKind::Link
                                  : fi.isDirectory() ? EntryKind::Directory
                                  : fi.isRegular     ? EntryKind::File
                                                     : EntryKind::Other);
        });
    }
    /// Facts about the entry `name` itself; empty when there is none.
    virtual std::optional<FileInfo> entry(const std::string& name) = 0;
    /// Opens the subfolder `name`; null when it is not a folder (a link to one included).
    virtual std::unique_ptr<Folder> openFolder(const std::string& name) = 0;
    /// What openFile does about the name being taken or free.
    enum class Create {
        Never,     ///< only a file that is there
        IfMissing, ///< the file that is there, else a new one
        Exclusive, ///< only a new file: fails (EEXIST, ERROR_FILE_EXISTS) when anything has the name
    };
    /// Opens the plain file `name` as RawFiles::open does (read-write, exclusively, never through a
    /// link, never a file with other hard links), creating it as `create` says; on Windows others
    /// may still read it, so that the same run can read it back past the cache. Null on failure,
    /// with RawFiles::lastError() set.
    virtual std::unique_ptr<RawFile> openFile(const std::string& name, Create create) = 0;
    /// The same, created when missing only if `create`.
    std::unique_ptr<RawFile> openFile(const std::string& name, bool create) {
        return openFile(name, create ? Create::IfMissing : Create::Never);
    }
    /// Why openForOverwrite() gave no file.
    enum class Refusal {
        None,
        NotAFile,   ///< a link, pipe, socket, device or folder (or nothing) has the name
        MountPoint, ///< something is mounted there
        OtherNames, ///< the file has other hard links
        InUse,      ///< open or mapped by a process, or backing a loop device
        CannotOpen, ///< the system refused to open it: RawFiles::lastError() says why
    };
    /// Opens the existing plain file `name` to be written over: never through a link, never a file
    /// with other hard links, a mount point or anything but a plain file, and never one that some
    /// process has open or mapped (a loop device's backing file included). The checks are made on
    /// the opened file itself, and only then is a read-only file made writable, so that no other
    /// name of it ever has its permissions changed. Null on failure, with `why` set.
    virtual std::unique_ptr<RawFile> openForOverwrite(const std::string& name, Refusal& why);
    /// Whether the entry `name` is open or mapped in some process, or backs a loop device, judged
    /// by which file it is (never by a path's text, which may be too long for the system to take).
    virtual bool isInUse(const std::string& /*name*/) { return false; }
    /// The names of the plain file `name`'s data streams besides its main one (NTFS alternate data
    /// streams), which hold bytes of the file that its length does not count. None where the
    /// system keeps no such streams, or when the file cannot be asked.
    virtual std::vector<std::string> extraStreams(const std::string& /*name*/) { return {}; }
    /// Opens the stream `stream` (a name extraStreams() gave) of the plain file `name` to be written
    /// over, as openFile does the file. Null on failure, with RawFiles::lastError() set.
    virtual std::unique_ptr<RawFile> openStream(const std::string& /*name*/, const std::string& /*stream*/) {
        return nullptr;
    }
    /// Deletes the file or link `name` (never a link's target). True when it is gone, also when it
    /// already was.
    virtual bool removeFile(const std::string& name) = 0;
    /// Deletes the empty subfolder `name`. True when it is gone.
    virtual bool removeFolder(const std::string& name) = 0;
    /// Clears read-only and hidden on `name` so that it can be written and deleted; a link is left
    /// as it is (it has no attributes of its own to clear), never followed.
    virtual bool makeNormal(const std::string& name) = 0;
    /// Gives the plain file `name` back the read-only, hidden and system marks of `attributes`
    /// (Attr bits) that makeNormal cleared, for a file written in place that stays. Where files
    /// carry no such marks (Linux, where the written file gives its permissions back itself when
    /// closed), there is nothing to do.
    virtual bool setMarks(const std::string& /*name*/, std::uint32_t /*attributes*/) { return true; }
    /// The system's handle of the open folder (a descriptor, a HANDLE), through which Drives answers
    /// questions about the folder itself; -1 where no folder is really held open.
    virtual std::intptr_t nativeHandle() const { return -1; }
};

inline std::unique_ptr<RawFile> Folder::openForOverwrite(const std::string& name, Refusal& why) {
    // Systems whose exclusive open refuses a file in use: the entry's facts decide the rest.
    const auto facts = entry(name);
    why = !facts || !facts->isRegular        ? Refusal::NotAFile
          : facts->mount != self().mount     ? Refusal::MountPoint
          : facts->links > 1                 ? Refusal::OtherNames
                                             : Refusal::None;
    if (why != Refusal::None)
        return nullptr;
    makeNormal(name);
    auto file = openFile(name, false);
    const auto held = file ? file->info() : std::nullopt;
    if (held && held->sameFileAs(*facts))
        return file;
    why = file ? Refusal::NotAFile : Refusal::CannotOpen; // another file took the name meanwhile
    return nullptr;
}

} // namespace platform
