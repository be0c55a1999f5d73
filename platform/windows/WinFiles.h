#pragma once
// What the Windows file backends share: facts about an open handle, the owner check, and the few
// NT calls that open an entry relative to an open folder. A name is always opened as itself
// (FILE_OPEN_REPARSE_POINT): no call here goes through a symbolic link, junction or mount point.

#include "platform/FileSystem.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace platform::windows {

/// The form of the UTF-8 `path` that every file call of the Windows backend takes. An absolute
/// path (C:\... or \\server\share\...) is made full and given the \\?\ (or \\?\UNC\)
/// prefix, which lifts the 260-character limit whatever the system's long-path
/// setting; a path that already has a prefix, a relative one and a drive letter alone stay as they
/// are.
std::wstring systemPath(const std::string& path);
/// `path` without the \\?\ prefix, for the checks that look at its plain form.
std::wstring plainPath(const std::wstring& path);

/// Whether a reparse point with tag `tag` is a link: only name surrogates (symbolic links,
/// junctions, mount points) stand for another name. Any other tag (cloud files on demand,
/// deduplicated and compressed files) marks data the filesystem keeps its own way, and such an
/// entry is a file or folder like any other. Tag 0 is no tag a system gives: the tag could not be
/// read (Wine opens what a host link points to), and the entry is taken for a link.
bool isLinkTag(DWORD tag);
/// `attributes` as the program sees them: the reparse bit kept only for a link.
DWORD linkAttributes(DWORD attributes, DWORD tag);
/// The reparse tag of the open `handle`; 0 when it carries none or the system does not say.
DWORD reparseTagOf(HANDLE handle);
/// The reparse tag of the entry at `path` (a systemPath()), opened as itself; 0 when unknown.
DWORD reparseTagAt(const std::wstring& path);

/// Whether an error code says that the thing asked for is not there (any more).
bool isGone(DWORD error);
/// A FILETIME as seconds since 1970-01-01 UTC.
std::int64_t unixSeconds(const FILETIME& time);
/// Whether `path` is a drive's root ("D:" or "D:\\"). Wine marks the root of a drive that its
/// configuration maps to a host folder as a reparse point; a root is never a link all the same.
bool isDriveRoot(const std::wstring& path);
/// Fills attributes, isRegular and size from the attribute bits, already passed through
/// linkAttributes(); a link is never a folder, and only a plain file has a size.
void applyAttributes(FileInfo& fi, DWORD attributes, std::uint64_t size);
/// Fills `fi` from what the open `handle` says about its file: attributes (the reparse bit kept
/// for a link by its tag, or taken from `extraAttributes`), size, volume and file number, links, time and owner. `fi.mount` is the
/// volume. False when the system answers nothing.
bool describeHandle(HANDLE handle, FileInfo& fi, DWORD extraAttributes = 0);

/// Opens `name`, one path component, relative to the folder handle `folder` (NtCreateFile with a
/// root directory), always as itself. `disposition` and `options` are NtCreateFile's (FILE_OPEN,
/// FILE_OPEN_IF; FILE_DIRECTORY_FILE, ...). INVALID_HANDLE_VALUE on failure, with the Win32 error
/// set; a name holding a separator or naming "." or ".." is refused.
HANDLE openBelow(HANDLE folder, const std::wstring& name, ACCESS_MASK access, ULONG share, ULONG disposition,
                 ULONG options);
/// Opens the object behind `handle` once more with `access` (NtCreateFile with the handle as root
/// and no name), so that a listing has a position and mask of its own. INVALID_HANDLE_VALUE on
/// failure, with the Win32 error set.
HANDLE reopen(HANDLE handle, ACCESS_MASK access, ULONG options);
/// Whether the open `handle` was reached by the name `name` itself and not through a link. Wine
/// opens what a host symbolic link points to even when asked for the link itself; the name the
/// handle carries then is the target's.
bool reachedAs(HANDLE handle, const std::wstring& name);
/// Marks the open `handle` for deletion when it closes. False with the Win32 error on failure.
bool deleteOnClose(HANDLE handle);

} // namespace platform::windows
