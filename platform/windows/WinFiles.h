#pragma once
// What the Windows file backends share: facts about an open handle, the owner check, and the few
// NT calls that open an entry relative to an open folder. A name is always opened as itself
// (FILE_OPEN_REPARSE_POINT): no call here goes through a symbolic link, junction or mount point.

#include "platform/FileSystem.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace platform::windows {

/// Whether an error code says that the thing asked for is not there (any more).
bool isGone(DWORD error);
/// A FILETIME as seconds since 1970-01-01 UTC.
std::int64_t unixSeconds(const FILETIME& time);
/// Whether `path` is a drive's root ("D:" or "D:\\"). Wine marks the root of a drive that its
/// configuration maps to a host folder as a reparse point; a root is never a link all the same.
bool isDriveRoot(const std::wstring& path);
/// Fills attributes, isRegular and size from the attribute bits; a reparse point is a link and
/// never a folder, and only a plain file has a size.
void applyAttributes(FileInfo& fi, DWORD attributes, std::uint64_t size);
/// Fills `fi` from what the open `handle` says about its file: attributes (the reparse bit kept
/// from `extraAttributes`), size, volume and file number, links, time and owner. `fi.mount` is the
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
