#include "wipe/Removal.h"

#include <vector>

namespace wipe {
namespace {

std::string shown(const platform::Folder& folder, const std::string& name) {
    const std::string& path = folder.path();
    if (path.empty() || path.back() == '/' || path.back() == '\\')
        return path + name;
    // The separator the folder's own path uses.
    return path + (path.find('\\') != std::string::npos ? '\\' : '/') + name;
}

bool removeBelow(platform::Folder& dir, core::ProblemSink& problems) {
    std::vector<platform::FileInfo> entries;
    // Collected first: removing entries while the folder is being read may skip some.
    if (!dir.list([&](const platform::FileInfo& fi) {
            entries.push_back(fi);
            return true;
        })) {
        problems.skipped(dir.path(), "cannot be listed");
        return false;
    }
    bool all = true;
    for (const auto& entry : entries) {
        if (isMountPoint(dir, entry)) {
            problems.skipped(shown(dir, entry.name), "is a mount point; left in place");
            all = false;
            continue;
        }
        if (entry.isDirectory() && !entry.isLink()) {
            all = removeTree(dir, entry.name, problems) && all;
            continue;
        }
        dir.makeNormal(entry.name); // Windows refuses to delete a read-only file
        if (!dir.removeFile(entry.name)) {
            problems.skipped(shown(dir, entry.name), "cannot be deleted");
            all = false;
        }
    }
    return all;
}

} // namespace

std::string joinPath(const platform::FileSystem& files, const std::string& folder, const std::string& name) {
    const char sep = files.separator();
    if (folder.empty() || folder.back() == sep)
        return folder + name;
    return folder + sep + name;
}

std::pair<std::string, std::string> splitPath(const platform::FileSystem& files, const std::string& path) {
    std::string p = path;
    const char sep = files.separator();
    while (p.size() > 1 && p.back() == sep)
        p.pop_back();
    const auto cut = p.rfind(sep);
    if (cut == std::string::npos)
        return {".", p};
    return {cut == 0 ? p.substr(0, 1) : p.substr(0, cut), p.substr(cut + 1)};
}

bool isMountPoint(const platform::Folder& folder, const platform::FileInfo& entry) {
    return entry.mount != folder.self().mount;
}

bool truncateAndDelete(platform::Folder& folder, const std::string& name, core::ProblemSink& problems,
                       const std::optional<platform::FileInfo>& expected) {
    const auto info = folder.entry(name);
    if (!info)
        return true;
    if (isMountPoint(folder, *info)) {
        problems.skipped(shown(folder, name), "is a mount point; left in place");
        return false;
    }
    if (info->isRegular && info->links == 1 && (!expected || info->sameFileAs(*expected))) {
        if (auto file = folder.openFile(name, false)) {
            const auto held = file->info();
            if (held && held->sameFileAs(*info)) {
                file->seek(0, platform::RawFile::From::Begin);
                file->truncate();
            }
        }
    }
    if (!folder.removeFile(name)) {
        problems.skipped(shown(folder, name), "cannot be deleted");
        return false;
    }
    return true;
}

bool removeTree(platform::Folder& parent, const std::string& name, core::ProblemSink& problems) {
    const auto info = parent.entry(name);
    if (!info)
        return true;
    if (!info->isDirectory() || info->isLink()) {
        problems.skipped(shown(parent, name), "is not a folder");
        return false;
    }
    if (isMountPoint(parent, *info)) {
        problems.skipped(shown(parent, name), "is a mount point; left in place");
        return false;
    }
    parent.makeNormal(name); // a read-only folder would refuse the removal of its entries
    auto dir = parent.openFolder(name);
    if (!dir || !dir->self().sameFileAs(*info)) {
        problems.skipped(shown(parent, name), "cannot be opened");
        return false;
    }
    if (!removeBelow(*dir, problems))
        return false;
    dir.reset();
    if (!parent.removeFolder(name)) {
        problems.skipped(shown(parent, name), "cannot be deleted");
        return false;
    }
    return true;
}

} // namespace wipe
