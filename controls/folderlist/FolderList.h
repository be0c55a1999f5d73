#pragma once
// What a window's folder list shows: the path from the drive root down to the chosen folder, each
// folder open, then the chosen folder's subfolders sorted by name without regard to case, so that
// the user can climb up or step down by double-clicking. Links are not folders here, as in every
// walk of the program. Used by every window that lets the user choose a folder.

#include <string>
#include <vector>

namespace platform {
class FileSystem;
}

namespace controls {

struct FolderLine {
    std::string path;  ///< the folder's full path
    std::string label; ///< what the line shows: the drive root as it is, other folders by name
    int depth = 0;     ///< indentation level, 0 for the root
    bool open = false; ///< on the way down to the chosen folder (or the chosen folder itself)
};

/// The lines for folder `path` on the drive whose root is `drive`, a prefix of `path`; when it is
/// not one (or empty), the lines start at the first component of `path` ("/" or "C:\\").
std::vector<FolderLine> folderLines(platform::FileSystem& files, const std::string& drive, const std::string& path);

} // namespace controls
