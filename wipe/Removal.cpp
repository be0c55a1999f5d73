#include "wipe/Removal.h"

#include <vector>

namespace wipe {
namespace {

bool removeBelow(platform::FileSystem& files, const std::string& path, std::uint64_t device,
                 core::ProblemSink& problems) {
    files.makeNormal(path); // a read-only folder would refuse the removal of its entries
    std::vector<platform::FileInfo> entries;
    // Collected first: removing entries while the folder is being read may skip some.
    if (!files.list(path, "*", [&](const platform::FileInfo& fi) {
            entries.push_back(fi);
            return true;
        })) {
        problems.skipped(path, "cannot be listed");
        return false;
    }
    bool all = true;
    for (const auto& entry : entries) {
        const std::string child = joinPath(files, path, entry.name);
        if (entry.isDirectory() && !entry.isLink()) {
            if (entry.device != device) {
                problems.skipped(child, "is another filesystem mounted here; left in place");
                all = false;
                continue;
            }
            all = removeBelow(files, child, device, problems) && all;
            continue;
        }
        files.makeNormal(child);
        if (!files.removeFile(child)) {
            problems.skipped(child, "cannot be deleted");
            all = false;
        }
    }
    if (!all)
        return false;
    if (!files.removeDirectory(path)) {
        problems.skipped(path, "cannot be deleted");
        return false;
    }
    return true;
}

} // namespace

std::string joinPath(const platform::FileSystem& files, const std::string& folder, const std::string& name) {
    const char sep = files.separator();
    if (folder.empty() || folder.back() == sep)
        return folder + name;
    return folder + sep + name;
}

bool truncateAndDelete(platform::Platform& platform, const std::string& path, core::ProblemSink& problems) {
    auto& files = platform.fileSystem();
    const auto info = files.info(path);
    if (!info)
        return true;
    if (info->isRegular) {
        if (auto file = platform.rawFiles().open(path)) {
            file->seek(0, platform::RawFile::From::Begin);
            file->truncate();
        }
    }
    if (!files.removeFile(path)) {
        problems.skipped(path, "cannot be deleted");
        return false;
    }
    return true;
}

bool removeTree(platform::FileSystem& files, const std::string& path, core::ProblemSink& problems) {
    const auto info = files.info(path);
    if (!info)
        return true;
    if (!info->isDirectory() || info->isLink()) {
        problems.skipped(path, "is not a folder");
        return false;
    }
    return removeBelow(files, path, info->device, problems);
}

} // namespace wipe
