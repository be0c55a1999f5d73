#include "indexdat/FolderList.h"

#include "platform/FileSystem.h"

#include <algorithm>

namespace indexdat {

std::vector<FolderLine> folderLines(platform::FileSystem& files, const std::string& root, const std::string& path) {
    const char sep = files.separator();
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
        if (current.empty() || current.back() != sep)
            current += sep;
        current += name;
        lines.push_back({current, name, static_cast<int>(lines.size()), true});
        at = end;
    }

    std::vector<std::string> below;
    files.names(current, [&](const std::string& name, platform::EntryKind kind) {
        if (kind == platform::EntryKind::Directory)
            below.push_back(name);
        else if (kind == platform::EntryKind::Unknown) {
            const auto info = files.info(current + sep + name);
            if (info && info->isDirectory())
                below.push_back(name);
        }
        return true;
    });
    std::sort(below.begin(), below.end());
    const int depth = static_cast<int>(lines.size());
    const std::string prefix = current.back() == sep ? current : current + sep;
    for (const std::string& name : below)
        lines.push_back({prefix + name, name, depth, false});
    return lines;
}

} // namespace indexdat
