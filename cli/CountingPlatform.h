#pragma once
// The platform every command of the command line runs on: the machine's own, with each change that
// succeeds counted on its way through (registry values, cache and history entries, trash items,
// bytes written). The closing summary line is made from these counts and from the destruction
// engine's verdicts on files and folders (VerdictLedger), so every command reports exactly what it
// changed on the machine, measured where the change happens rather than guessed from its intent.

#include "proxies/ProxyPlatform.h"

#include <cstdint>
#include <memory>
#include <string>

namespace cli {

/// What has changed so far.
struct ChangeCounts {
    std::uint64_t filesOverwrittenAndDeleted = 0; ///< these from the engine's verdicts
    std::uint64_t filesOverwritten = 0;           ///< overwritten and still there
    std::uint64_t streamsOverwritten = 0;         ///< extra data streams of the files above
    std::uint64_t filesDeleted = 0;               ///< deleted without being overwritten (links included)
    std::uint64_t foldersDeleted = 0;
    std::uint64_t filesVerified = 0; ///< read back and found as the last pass wrote them
    std::uint64_t bytesWritten = 0;  ///< into any file, the command's own included
    std::uint64_t registryValuesRemoved = 0;
    std::uint64_t registryValuesWritten = 0;
    std::uint64_t cacheEntriesDeleted = 0;
    std::uint64_t otherCacheItemsDeleted = 0; ///< files of no listed entry, side caches' files and folders
    std::uint64_t historyEntriesDeleted = 0;
    std::uint64_t historyEntriesAdded = 0;
    std::uint64_t trashItemsRemoved = 0;
    std::uint64_t recentDocumentsRemoved = 0;

    friend bool operator==(const ChangeCounts&, const ChangeCounts&) = default;
};

class CountingPlatform final : public platform::ProxyPlatform {
public:
    /// Every call goes to `real`, which must outlive this object.
    explicit CountingPlatform(platform::Platform& real);
    ~CountingPlatform() override;

    /// The changes so far.
    ChangeCounts counts() const;

    // The facilities whose changes are counted; the others pass through as ProxyPlatform has them.
    platform::RawFiles& rawFiles() override;
    platform::FileSystem& fileSystem() override;
    platform::Registry& registry() override;
    platform::UrlCache& urlCache() override;
    platform::UrlHistory& urlHistory() override;
    platform::RecycleBin& recycleBin() override;

private:
    struct Facilities;
    ChangeCounts m_counts;
    std::unique_ptr<Facilities> m_facilities;
};

} // namespace cli
