#pragma once
// What the window's folder list shows: the path from the drive root down to the chosen folder,
// each folder open, then the chosen folder's subfolders sorted by name, so that the user can climb
// up or step down by double-clicking. Links are not folders here, as in the search.

#include <string>
#include <vector>

namespace platform {
class FileSystem;
}

namespace indexdat {

struct FolderLine {
    std::string path;  ///< the folder's full path
    std::string label; ///< what the line shows: the drive root as it is, other folders by name
    int depth = 0;     ///< indentation level, 0 for the root
    bool open = false; ///< on the way down to the chosen folder (or the chosen folder itself)
};

/// The lines for folder `path` on the drive whose root is `root` (a prefix of `path`).
std::vector<FolderLine> folderLines(platform::FileSystem& files, const std::string& root, const std::string& path);

} // namespace indexdat
