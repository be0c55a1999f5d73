#pragma once
// The search for record files: every entry whose name matches a pattern in a folder and in all
// folders below it, depth first, a folder's own matches before those of its subfolders, each folder
// in the order the system lists it; nothing is sorted. Links are never followed: a link to a folder
// is not a folder here, so a loop in the tree cannot make the search run forever. Folders are
// entered through their open parents, so neither depth nor path length ends the search. The counters are
// 16-bit and the total is shown in 32 bits, the widths the window's counters are laid out for;
// passing either limit ends the search with SearchOverflow.

#include "core/Currency.h"
#include "core/ProblemSink.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace platform {
class FileSystem;
}

namespace indexdat {

/// A counter passed 32,767 or the total does not fit a signed 32-bit number: the search ends.
struct SearchOverflow : std::overflow_error {
    using std::overflow_error::overflow_error;
};

/// Cuts `OriginalStr` before its first zero character, in place, and returns it; a text without a
/// zero character is returned unchanged.
std::string& StripNulls(std::string& OriginalStr);

/// What one match adds to the total: the size's low 32 bits minus its high 32 bits, each read as a
/// signed 32-bit number. Exact below 2 GiB; larger files add this odd figure on purpose, so that
/// the total agrees with the one the index.dat window shows for the same files.
std::int64_t sizeContribution(std::uint64_t size);

/// The counts line: files, "/", folders below the start plus the start itself ("3/13").
/// Throws SearchOverflow when the folder count plus one passes 32,767.
std::string countsText(std::int16_t fileCount, std::int16_t dirCount);

/// The total line: "=" and the total with thousands grouped, then " Bytes" ("=1,234,567 Bytes").
/// Throws SearchOverflow when the total does not fit a signed 32-bit number.
std::string totalText(core::Currency total);

class FileSearch {
public:
    /// Receives the full path of each match, in search order.
    using Found = std::function<void(const std::string& path)>;

    /// A search over `files` reporting matches to `found` and each folder it could not enter
    /// (or list) to `problems`, when given.
    FileSearch(platform::FileSystem& files, Found found, core::ProblemSink* problems = nullptr);

    /// Searches `path` and every folder below it for entries matching `SearchStr` (the platform's
    /// wildcard rules; empty finds nothing), files and folders alike. Appends a separator to `path`
    /// when it has none. Adds each match to `FileCount` and reports it, each folder found (links
    /// aside) to `DirCount`, and returns the summed sizeContribution() of the matches. Folders that
    /// cannot be entered or listed contribute nothing and are named to the problem sink. Throws
    /// SearchOverflow when a counter would pass 32,767; matches reported until then stay reported.
    core::Currency FindFilesAPI(std::string& path, const std::string& SearchStr, std::int16_t& FileCount,
                                std::int16_t& DirCount);

private:
    void notEntered(const std::string& path);

    platform::FileSystem& m_files;
    Found m_found;
    core::ProblemSink* m_problems;
    char m_separator;
};

} // namespace indexdat
