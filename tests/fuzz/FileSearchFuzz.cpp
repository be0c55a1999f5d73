// The record-file search over any tree and any pattern: names are whatever a drive holds (zero
// characters too, which a find record's fixed-size name field can carry) and the pattern is what
// the user typed. The search must not fault, every report must be a folder of the tree followed by
// a matching name, and the counters and the total must agree with the reports. The tree is held in
// memory; matching is the platform's own.

#include "indexdat/FileSearch.h"
#include "platform/Folder.h"
#include "platform/linux/LinuxFileSystem.h"
#include "tests/fuzz/FuzzCheck.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace {

struct Node {
    std::string name;
    platform::EntryKind kind;
    std::uint64_t size;
    bool gone; ///< listed, but gone when asked about
};

/// Folders by their path with its closing '/', each with its entries in listing order.
class MemoryFileSystem final : public platform::FileSystem {
public:
    std::map<std::string, std::vector<Node>> folders;

    bool list(const std::string&, const std::string&, const std::function<bool(const platform::FileInfo&)>&) override {
        return false;
    }
    bool names(const std::string& dir, const std::function<bool(const std::string&, platform::EntryKind)>& visit) override {
        const auto it = folders.find(dir);
        if (it == folders.end())
            return false;
        for (const Node& node : it->second)
            if (!visit(node.name, node.kind))
                break;
        return true;
    }
    bool matches(const std::string& name, const std::string& pattern) const override {
        return m_native.matches(name, pattern);
    }
    std::optional<platform::FileInfo> info(const std::string& path) override {
        const auto slash = path.rfind('/');
        const auto it = folders.find(path.substr(0, slash + 1));
        if (it == folders.end())
            return std::nullopt;
        for (const Node& node : it->second) {
            if (node.gone || node.name != path.substr(slash + 1))
                continue;
            platform::FileInfo fi;
            fi.name = node.name;
            fi.size = node.size;
            if (node.kind == platform::EntryKind::Directory)
                fi.attributes = platform::Attr::Directory;
            else if (node.kind == platform::EntryKind::Link)
                fi.attributes = platform::Attr::ReparsePoint;
            else
                fi.attributes = platform::Attr::Normal;
            return fi;
        }
        return std::nullopt;
    }
    std::unique_ptr<platform::Folder> openFolder(const std::string& path) override;
    bool removeFile(const std::string&) override { return false; }
    bool removeDirectory(const std::string&) override { return false; }
    bool createDirectory(const std::string&) override { return false; }
    bool makeNormal(const std::string&) override { return false; }
    bool isInUse(const std::string&) override { return false; }
    char separator() const override { return '/'; }

private:
    platform::linux::LinuxFileSystem m_native;
};

/// A folder of the tree, its entries reached by name as a real open folder's are.
class MemoryFolder final : public platform::Folder {
public:
    MemoryFolder(MemoryFileSystem& files, std::string path) : m_files(files), m_path(std::move(path)) {}

    const std::string& path() const override { return m_path; }
    platform::FileInfo self() const override { return {}; }
    bool list(const std::function<bool(const platform::FileInfo&)>&) override { return false; }
    bool names(const std::function<bool(const std::string&, platform::EntryKind)>& visit) override {
        return m_files.names(m_path, visit);
    }
    std::optional<platform::FileInfo> entry(const std::string& name) override { return m_files.info(m_path + name); }
    std::unique_ptr<platform::Folder> openFolder(const std::string& name) override {
        return m_files.openFolder(m_path + name + "/");
    }
    using platform::Folder::openFile;
    std::unique_ptr<platform::RawFile> openFile(const std::string&, Create) override { return nullptr; }
    bool removeFile(const std::string&) override { return false; }
    bool removeFolder(const std::string&) override { return false; }
    bool makeNormal(const std::string&) override { return false; }

private:
    MemoryFileSystem& m_files;
    std::string m_path;
};

std::unique_ptr<platform::Folder> MemoryFileSystem::openFolder(const std::string& path) {
    return folders.count(path) ? std::make_unique<MemoryFolder>(*this, path) : nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string pattern = input.ConsumeRandomLengthString(24);

    // Each entry goes into a folder picked among those made so far, the root first. Kind 5 is an
    // entry the listing cannot name the kind of and that is gone when asked about.
    MemoryFileSystem files;
    std::vector<std::string> folderPaths{"/r/"};
    files.folders["/r/"];
    bool zeroInName = false;
    while (input.remaining_bytes() > 0 && folderPaths.size() < 64) {
        const std::string parent = folderPaths[input.ConsumeIntegralInRange<std::size_t>(0, folderPaths.size() - 1)];
        const int kind = input.ConsumeIntegralInRange<int>(0, 5);
        const std::uint64_t entrySize = input.ConsumeIntegral<std::uint64_t>();
        std::string name = input.ConsumeRandomLengthString(16);
        auto& siblings = files.folders[parent];
        if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos ||
            std::any_of(siblings.begin(), siblings.end(), [&](const Node& n) { return n.name == name; }))
            continue;
        zeroInName = zeroInName || name.find('\0') != std::string::npos;
        const bool gone = kind == 5;
        siblings.push_back({name, gone ? platform::EntryKind::Unknown : static_cast<platform::EntryKind>(kind),
                            entrySize, gone});
        if (kind == static_cast<int>(platform::EntryKind::Directory)) {
            folderPaths.push_back(parent + name + "/");
            files.folders[folderPaths.back()];
        }
    }

    std::vector<std::string> found;
    indexdat::FileSearch search(files, [&](const std::string& path) { found.push_back(path); });
    std::string root = "/r";
    std::int16_t fileCount = 0;
    std::int16_t dirCount = 0;
    const core::Currency total = search.FindFilesAPI(root, pattern, fileCount, dirCount);
    FUZZ_CHECK(root == "/r/");
    FUZZ_CHECK(static_cast<std::size_t>(fileCount) == found.size());

    core::Currency foundTotal;
    for (const std::string& path : found) {
        const auto slash = path.rfind('/');
        FUZZ_CHECK(files.folders.count(path.substr(0, slash + 1)) == 1);
        FUZZ_CHECK(files.matches(path.substr(slash + 1), pattern));
        const auto fi = files.info(path);
        FUZZ_CHECK(fi.has_value());
        foundTotal = foundTotal + core::Currency::fromWhole(indexdat::sizeContribution(fi->size));
    }
    FUZZ_CHECK(total == foundTotal);
    if (zeroInName)
        return 0; // such a name is cut short and may read as another one: the tree searched differs

    // Every folder is reachable from the root, so the search sees every entry once.
    std::size_t folders = 0;
    std::size_t matches = 0;
    for (const auto& [dir, nodes] : files.folders)
        for (const Node& node : nodes) {
            folders += node.kind == platform::EntryKind::Directory || node.gone;
            matches += !node.gone && files.matches(node.name, pattern);
        }
    FUZZ_CHECK(static_cast<std::size_t>(dirCount) == folders);
    FUZZ_CHECK(found.size() == matches);
    return 0;
}
