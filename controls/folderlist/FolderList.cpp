#include "controls/folderlist/FolderList.h"

#include "platform/FileSystem.h"

#include <algorithm>
#include <cctype>

namespace controls {

std::vector<FolderLine> folderLines(platform::FileSystem& files, const std::string& drive, const std::string& path) {
    const char sep = files.separator();
    // A drive root that does not begin the path (a link on the way, or no drive known for it):
    // the path is shown from the top of its own text.
    std::string root = drive;
    if (root.empty() || path.compare(0, root.size(), root) != 0)
        root = path.substr(0, path.find(sep) + 1);
    std::vector<FolderLine> lines;
    std::string current = root;
    lines.push_back({root, root, 0, true});
    // Each component of the path below the root opens one more level.
    std::size_t at = root.size();
    while (at < path.size()) {
        while (at < path.size() && path[at] == sep)
            ++at;
        const std::size_t end = std::min(path.find(sep, at), path.size());
        if (end == at)
            break;
        const std::string name = path.substr(at, end - at);
        current = files.join(current, name);
        lines.push_back({current, name, static_cast<int>(lines.size()), true});
        at = end;
    }

    std::vector<std::string> below;
    files.names(current, [&](const std::string& name, platform::EntryKind kind) {
        if (kind == platform::EntryKind::Directory)
            below.push_back(name);
        else if (kind == platform::EntryKind::Unknown) {
            const auto info = files.info(files.join(current, name));
            if (info && info->isDirectory())
                below.push_back(name);
        }
        return true;
    });
    // By name as a folder chooser shows them: letter case does not separate names.
    std::sort(below.begin(), below.end(), [](const std::string& a, const std::string& b) {
        const auto folded = [](unsigned char c) { return static_cast<char>(std::tolower(c)); };
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [&](char x, char y) { return folded(x) < folded(y); });
    });
    const int depth = static_cast<int>(lines.size());
    for (const std::string& name : below)
        lines.push_back({files.join(current, name), name, depth, false});
    return lines;
}

} // namespace controls
