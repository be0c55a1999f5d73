#include "cleaning/TempFolderGuard.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace cleaning {
namespace {

using platform::FileInfo;
using platform::Folder;

/// Deeper than any real path: a walk up that goes on longer has met a loop.
constexpr int MaxDepth = 4096;

/// The folder `start` and every folder above it up to the root, reached through "..", so that
/// each is the folder that really holds the one before, whatever the path's text says.
std::vector<FileInfo> withAncestors(Folder& start) {
    std::vector<FileInfo> chain{start.self()};
    auto up = start.openFolder("..");
    for (int depth = 0; up && depth < MaxDepth; ++depth) {
        FileInfo facts = up->self();
        if (facts.sameFileAs(chain.back()))
            break; // the root's ".." is the root itself
        chain.push_back(std::move(facts));
        up = up->openFolder("..");
    }
    return chain;
}

std::unique_ptr<Folder> openWhereItLeads(platform::FileSystem& fs, const std::string& path) {
    if (path.empty())
        return nullptr;
    if (auto folder = fs.openFolder(path))
        return folder;
    // A home folder may itself be a link to where it lives: the folder it leads to is the home.
    return fs.openFolder(fs.join(path, "."));
}

bool sameAsAny(const FileInfo& folder, const std::vector<FileInfo>& others) {
    for (const FileInfo& other : others)
        if (folder.sameFileAs(other))
            return true;
    return false;
}

} // namespace

std::string TempFolderRefusal(platform::Platform& platform, Folder& temp) {
    platform::FileSystem& fs = platform.fileSystem();
    platform::KnownFolders& known = platform.knownFolders();
    const std::vector<FileInfo> tempChain = withAncestors(temp);
    const FileInfo& self = tempChain.front();
    std::vector<std::vector<FileInfo>> homeChains;
    for (const std::string& path : known.homePaths())
        if (const auto home = openWhereItLeads(fs, path))
            homeChains.push_back(withAncestors(*home));

    // The system's folders first: "/" holds every home, but is refused as what it is.
    std::vector<std::pair<std::string, FileInfo>> systemFolders;
    for (const std::string& path : known.systemFolders())
        if (const auto system = fs.openFolder(path)) {
            systemFolders.emplace_back(path, system->self());
            if (self.sameFileAs(systemFolders.back().second))
                return "is the system folder " + path + "; the temporary folder is never cleaned there";
        }
    bool insideHome = false;
    for (const std::vector<FileInfo>& homeChain : homeChains) {
        if (self.sameFileAs(homeChain.front()))
            return "is your home folder; the temporary folder is never cleaned there";
        if (sameAsAny(self, homeChain))
            return "holds your home folder; the temporary folder is never cleaned there";
        insideHome = insideHome || sameAsAny(homeChain.front(), tempChain);
    }

    // Inside the home folder it is the user's own; anywhere else the system's folders stay out of
    // reach, a shared temporary folder inside one (/var/tmp) excepted. Every folder lies inside
    // the root: only the folders below it count here.
    for (const auto& [path, facts] : systemFolders) {
        const bool inside = !facts.sameFileAs(tempChain.back()) && sameAsAny(facts, tempChain);
        if (inside && !insideHome && !self.sharedFolder)
            return "lies inside the system folder " + path + "; the temporary folder is never cleaned there";
    }
    if (!self.ownedByUser && !self.sharedFolder)
        return "belongs to another user and is not a shared temporary folder; left alone";
    if (self.sharedFolder && known.runAs() == platform::RunAs::Administrator)
        return "is shared by all users, and run as root without sudo (no SUDO_UID) whose files in it are whose "
               "cannot be told; left alone";
    return {};
}

std::string TempFolderRefusal(platform::Platform& platform, const std::string& path) {
    if (path.empty())
        return "is not set";
    const auto temp = platform.fileSystem().openFolder(path);
    if (!temp)
        return "is not a folder";
    return TempFolderRefusal(platform, *temp);
}

std::string RunAsWarning(platform::RunAs runAs) {
    switch (runAs) {
    case platform::RunAs::User:
        return {};
    case platform::RunAs::Administrator:
        return "Running as root: whatever is cleaned is root's, and a shared temporary folder is left alone. "
               "Start Tavi Scourmill as yourself to clean your own traces.";
    case platform::RunAs::AdministratorForUser:
        return "Running as root for the user who started sudo: only that user's files are cleaned. "
               "Tavi Scourmill needs no root rights; start it as yourself.";
    }
    return {};
}

std::string TempFolderRefusedLine(const std::string& path, const std::string& reason) {
    return "Nothing was cleaned: the temporary folder " + path + " " + reason + ".";
}

bool IsServiceEntry(const std::string& name) {
    const std::string_view n(name);
    // X displays lock as .X<display>-lock; X, ICE, input methods and font servers keep sockets in
    // their .*-unix folders; systemd's PrivateTmp= folders hold running services' files.
    if (n.starts_with(".X") && n.ends_with("-lock"))
        return true;
    for (std::string_view folder : {".X11-unix", ".ICE-unix", ".XIM-unix", ".font-unix", ".Test-unix"})
        if (n == folder)
            return true;
    return n.starts_with("systemd-private-");
}

} // namespace cleaning
