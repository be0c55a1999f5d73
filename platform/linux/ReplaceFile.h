#pragma once
// Rewriting a file whole without ever leaving it half written: the new content goes to a new file
// beside it, is flushed to disk and renamed over the old one, and the folder is flushed so that
// the rename itself survives a crash. A reader (the browser, Wine) sees the old file or the new
// one, never a mix.

#include <string>
#include <sys/types.h>

namespace platform::linux {

/// Replaces the file `path` with one holding `text`. The new file keeps the old one's permission
/// bits (and, where the process may give it, its owner), or takes `modeIfNew` when there was no
/// file. False when a step failed: the old file is then as it was and no new file is left behind.
bool replaceFile(const std::string& path, const std::string& text, mode_t modeIfNew);

} // namespace platform::linux
