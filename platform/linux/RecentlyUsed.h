#pragma once
// The freedesktop recently-used.xbel file, read and emptied through GLib's GBookmarkFile so that
// what is written is exactly what the desktop's own readers accept.

#include <string>
#include <vector>

namespace platform::linux {

/// The addresses bookmarked in the file at `path`; empty when it is missing or unreadable.
std::vector<std::string> recentlyUsedUris(const std::string& path);
/// The addresses bookmarked in `text`, the content of such a file; empty when it is not one.
std::vector<std::string> recentlyUsedUrisIn(const std::string& text);
/// Removes every bookmark: the file is replaced, atomically, by a valid empty bookmark file with
/// the old file's permissions. True when done, also when there was no file.
bool clearRecentlyUsed(const std::string& path);

} // namespace platform::linux
