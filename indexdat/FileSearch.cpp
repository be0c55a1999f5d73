#include "indexdat/FileSearch.h"

#include "core/NumberFormat.h"
#include "platform/FileSystem.h"

#include <limits>
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

FileSearch::FileSearch(platform::FileSystem& files, Found found)
    : m_files(files), m_found(std::move(found)), m_separator(files.separator()) {}

core::Currency FileSearch::FindFilesAPI(std::string& path, const std::string& SearchStr, std::int16_t& FileCount,
                                        std::int16_t& DirCount) {
    if (path.empty() || path.back() != m_separator)
        path += m_separator;

    // One listing serves both the folder pass and the file pass: the result is the same as listing
    // twice, at half the cost on large trees.
    std::vector<Entry> entries;
    m_files.names(path, [&](const std::string& name, platform::EntryKind kind) {
        entries.push_back({name, kind});
        return true;
    });

    std::vector<std::string> subfolders;
    for (Entry& e : entries) {
        StripNulls(e.name);
        bool folder = e.kind == platform::EntryKind::Directory;
        if (e.kind == platform::EntryKind::Unknown) {
            // An entry that cannot be asked about counts as a folder; descending into it finds nothing.
            const auto info = m_files.info(path + e.name);
            folder = !info || info->isDirectory();
        }
        if (folder) {
            subfolders.push_back(e.name);
            increment(DirCount);
        }
    }

    core::Currency total;
    for (const Entry& e : entries) {
        if (!m_files.matches(e.name, SearchStr))
            continue;
        const std::string found = path + e.name;
        const auto info = m_files.info(found);
        if (!info)
            continue; // gone since the listing
        total = total + core::Currency::fromWhole(sizeContribution(info->size));
        increment(FileCount);
        m_found(found);
    }

    for (const std::string& name : subfolders) {
        std::string below = path + name + m_separator;
        total = total + FindFilesAPI(below, SearchStr, FileCount, DirCount);
    }
    return total;
}

} // namespace indexdat
