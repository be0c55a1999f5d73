#pragma once
// The last steps of every wipe: emptying a file and deleting it, and deleting a folder with all it
// holds. Neither follows a symbolic link (a link is deleted, its target untouched) and a folder
// removal never descends into another filesystem mounted below it.

#include "core/ProblemSink.h"
#include "platform/Platform.h"

#include <string>

namespace wipe {

/// `folder` + the platform's separator + `name`, with no doubled separator.
std::string joinPath(const platform::FileSystem& files, const std::string& folder, const std::string& name);

/// Cuts the regular file `path` to length 0 and deletes it; a link or other non-regular entry is
/// only deleted. True when nothing is left at `path`; otherwise the reason goes to `problems`.
bool truncateAndDelete(platform::Platform& platform, const std::string& path, core::ProblemSink& problems);

/// Deletes folder `path` and everything below it, read-only items included, without following
/// links and without entering folders of a filesystem other than `path`'s own (those stay, and
/// are reported). True when the folder is gone.
bool removeTree(platform::FileSystem& files, const std::string& path, core::ProblemSink& problems);

} // namespace wipe
