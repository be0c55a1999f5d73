#pragma once
// A platform that changes nothing: every call that would change the machine (write or delete a
// file, write or delete a registry value, delete a cache entry or the history, empty the bin, start
// a program, fill memory) only records what it would have done, and every call that reads
// passes through to the real platform. Previews run the ordinary cleaning routines over it, so a
// preview cannot delete by construction rather than by each routine remembering to check a flag.
// Later reads see the recorded deletions: a file "deleted" here no longer exists for info(), and a
// deleted registry value no longer reads.

#include "proxies/ProxyPlatform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace platform {

/// One change a preview would have made.
struct Change {
    enum class Kind {
        CreateFile,           ///< a raw open of a missing file (`target`)
        WriteFile,            ///< `bytes` written into `target`, all writes of one open together
        TruncateFile,         ///< `target` cut to `bytes` bytes
        RemoveFile,           ///< a file or link removed
        RemoveDirectory,      ///< an empty folder removed
        CreateDirectory,
        MakeNormal,           ///< read-only and hidden cleared
        SetMarks,             ///< read-only, hidden and system given back to a file written in place
        CreateKey,            ///< registry key `target` created
        SetValue,             ///< value `detail` of key `target` written
        DeleteValue,          ///< value `detail` of key `target` deleted
        DeleteCacheEntry,     ///< the cache entry of address `target`
        DeleteUnlistedCache,  ///< the cache files no entry names
        AddHistory,           ///< address `target` with title `detail` added to the history
        DeleteHistory,        ///< address `target` removed from the history
        ClearHistory,         ///< the whole history cleared
        EmptyRecycleBin,      ///< the bin of drive `target` ("" for all) emptied
        ClearRecentDocuments,
        OpenTarget,           ///< `target` opened with its default handler
        StartProgram,         ///< program `target` started
        FillMemory,           ///< a block of `bytes` taken to be filled whole (the memory wipe)
        SetOutOfMemoryScore,  ///< this process's out-of-memory score set to `detail`
    };
    Kind kind;
    std::string target;
    std::string detail;
    std::uint64_t bytes = 0;
};

class PreviewPlatform final : public ProxyPlatform {
public:
    /// Reads go to `real`, which must outlive this object; changes go to changes().
    explicit PreviewPlatform(Platform& real);
    ~PreviewPlatform() override;

    /// What would have been changed, in order.
    const std::vector<Change>& changes() const;
    /// The changes of one kind, in order.
    std::vector<Change> changes(Change::Kind kind) const;

    // The facilities that can change something; drives, known folders, processes, memory figures
    // and connectivity only read, and pass through as ProxyPlatform has them.
    RawFiles& rawFiles() override;
    FileSystem& fileSystem() override;
    Registry& registry() override;
    VirtualMemory& virtualMemory() override;
    Shell& shell() override;
    UrlCache& urlCache() override;
    UrlHistory& urlHistory() override;
    RecycleBin& recycleBin() override;

private:
    struct Facilities;
    std::unique_ptr<Facilities> m_facilities;
};

} // namespace platform
