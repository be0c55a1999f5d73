#include "indexdat/FileSearch.h"

#include "core/NumberFormat.h"
#include "platform/FileSystem.h"
#include "platform/Folder.h"

#include <limits>
#include <memory>
#include <vector>

namespace indexdat {
namespace {

void increment(std::int16_t& counter) {
    if (counter == std::numeric_limits<std::int16_t>::max())
        throw SearchOverflow("more than 32,767 entries");
    ++counter;
}

struct Entry {
    std::string name;
    platform::EntryKind kind;
};

} // namespace

std::string& StripNulls(std::string& OriginalStr) {
    const auto zero = OriginalStr.find('\0');
    if (zero != std::string::npos)
        OriginalStr.erase(zero);
    return OriginalStr;
}

std::int64_t sizeContribution(std::uint64_t size) {
    const auto low = static_cast<std::int32_t>(static_cast<std::uint32_t>(size));
    const auto high = static_cast<std::int32_t>(static_cast<std::uint32_t>(size >> 32));
    return static_cast<std::int64_t>(low) - high;
}

std::string countsText(std::int16_t fileCount, std::int16_t dirCount) {
    increment(dirCount);
    std::string text = std::to_string(fileCount);
    text += '/';
    text += std::to_string(dirCount);
    return text;
}

std::string totalText(core::Currency total) {
    const std::int64_t whole = total.rounded();
    if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max())
        throw SearchOverflow("total size beyond 2,147,483,647 bytes");
    std::string text = "=";
    text += core::formatGrouped(whole);
    text += " Bytes";
    return text;
}

FileSearch::FileSearch(platform::FileSystem& files, Found found, core::ProblemSink* problems)
    : m_files(files), m_found(std::move(found)), m_problems(problems), m_separator(files.separator()) {}

void FileSearch::notEntered(const std::string& path) {
    if (m_problems)
        m_problems->skipped(path, "folder could not be entered; not searched");
}

core::Currency FileSearch::FindFilesAPI(std::string& path, const std::string& SearchStr, std::int16_t& FileCount,
                                        std::int16_t& DirCount) {
    if (path.empty() || path.back() != m_separator)
        path += m_separator;

    // Each folder is entered through its parent's open folder, by name: the search never builds a
    // path to open, so no length of path and no depth of tree stops it. The folders on the way
    // down stay open, one per level, until their subfolders are done.
    struct Level {
        std::unique_ptr<platform::Folder> folder;
        std::string path; ///< with its closing separator, for the reports
        std::vector<std::string> subfolders;
        std::size_t next = 0;
    };
    core::Currency total;
    std::vector<Level> levels;

    const auto enter = [&](std::unique_ptr<platform::Folder> folder, std::string shown) {
        // One listing serves both the folder pass and the file pass: the result is the same as
        // listing twice, at half the cost on large trees.
        std::vector<Entry> entries;
        if (!folder->names([&](const std::string& name, platform::EntryKind kind) {
                entries.push_back({name, kind});
                return true;
            })) {
            notEntered(shown);
            return;
        }
        Level level{std::move(folder), std::move(shown), {}, 0};
        for (Entry& e : entries) {
            StripNulls(e.name);
            bool isFolder = e.kind == platform::EntryKind::Directory;
            if (e.kind == platform::EntryKind::Unknown) {
                // An entry that cannot be asked about counts as a folder; descending into it finds nothing.
                const auto info = level.folder->entry(e.name);
                isFolder = !info || info->isDirectory();
            }
            if (isFolder) {
                level.subfolders.push_back(e.name);
                increment(DirCount);
            }
        }
        for (const Entry& e : entries) {
            if (!m_files.matches(e.name, SearchStr))
                continue;
            const auto info = level.folder->entry(e.name);
            if (!info)
                continue; // gone since the listing
            total = total + core::Currency::fromWhole(sizeContribution(info->size));
            increment(FileCount);
            m_found(level.path + e.name);
        }
        levels.push_back(std::move(level));
    };

    if (auto start = m_files.openFolder(path))
        enter(std::move(start), path);
    else
        notEntered(path);
    while (!levels.empty()) {
        Level& top = levels.back();
        if (top.next == top.subfolders.size()) {
            levels.pop_back();
            continue;
        }
        const std::string name = top.subfolders[top.next++]; // a copy: entering below moves the levels
        std::string below = top.path + name + m_separator;
        if (auto sub = top.folder->openFolder(name))
            enter(std::move(sub), std::move(below));
        else if (top.folder->entry(name)) // one gone since the listing held nothing to miss
            notEntered(below);
    }
    return total;
}

} // namespace indexdat
