#pragma once
// The freedesktop recently-used.xbel file, read and emptied through GLib's GBookmarkFile so that
// what is written is exactly what the desktop's own readers accept. A list that is a link (often
// to /dev/null, to switch recording off) or anything but a regular file is neither read nor
// replaced: reading a FIFO would wait forever, and replacing the link would switch recording on.

#include "platform/Remover.h"

#include <string>
#include <vector>

namespace platform::linux {

/// What reading the list gave.
struct RecentlyUsedRead {
    std::vector<std::string> uris;
    std::string problem; ///< why the file was not read; empty when it was read or is missing
};

/// The addresses bookmarked in the file at `path`; none when it is missing, unreadable, a link or
/// not a regular file (the last three with the problem said).
RecentlyUsedRead readRecentlyUsed(const std::string& path);
/// The addresses bookmarked in `text`, the content of such a file; empty when it is not one.
std::vector<std::string> recentlyUsedUrisIn(const std::string& text);
/// Removes every bookmark: the file is replaced, atomically, by a valid empty bookmark file with
/// the old file's permissions. True when done, also when there was no file. A link or anything
/// but a regular file is left as it is: false, with why in `problem` when given.
bool clearRecentlyUsed(const std::string& path, Remover& remover, std::string* problem = nullptr);

} // namespace platform::linux
