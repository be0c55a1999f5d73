#pragma once
// The last steps of every wipe: emptying a file and deleting it, and deleting a folder with all it
// holds. Both work inside an open folder (platform::Folder), so nothing swapped in on the way can
// redirect them; neither follows a symbolic link (a link is deleted, its target untouched), a
// folder removal never enters a mount point of any kind (bind mounts included), and a file with
// other hard links only loses the name given: its contents stay, for its other names.

#include "core/ProblemSink.h"
#include "platform/Folder.h"
#include "platform/Platform.h"

#include <optional>
#include <string>
#include <utility>

namespace wipe {

/// `folder` + the platform's separator + `name`, with no doubled separator.
std::string joinPath(const platform::FileSystem& files, const std::string& folder, const std::string& name);

/// The folder part and the last component of `path`: ("/a", "b") for "/a/b", (".", "b") for "b".
std::pair<std::string, std::string> splitPath(const platform::FileSystem& files, const std::string& path);

/// Whether `entry` of `folder` is a mount point (any mount, bind mounts included).
bool isMountPoint(const platform::Folder& folder, const platform::FileInfo& entry);

/// Cuts the regular file `name` in `folder` to length 0 and deletes it; a link or other
/// non-regular entry is only deleted, and so is a file with other hard links. With `expected`
/// given, a file that is no longer that very file is not cut. True when nothing is left at
/// `name`; otherwise the reason goes to `problems`.
bool truncateAndDelete(platform::Folder& folder, const std::string& name, core::ProblemSink& problems,
                       const std::optional<platform::FileInfo>& expected = std::nullopt);

/// Deletes the subfolder `name` of `parent` and everything below it, read-only items included,
/// without following links and without entering or removing mount points (those stay, with the
/// folders holding them, and are reported). True when the folder is gone.
bool removeTree(platform::Folder& parent, const std::string& name, core::ProblemSink& problems);

} // namespace wipe
