#pragma once
// The file side of the trace cleaning: the rules that decide which files of the shared temporary
// and cookie folders may go, the temporary-folder clean, and the eleven-pass overwrite of one file.
//
// The temporary and cookie folders are shared with running programs (and, for /tmp, with other
// users), so automatic cleaning touches only the user's own regular files that no process has
// open. Links, sockets, pipes and devices are never touched, nothing is followed through a link,
// and no walk enters another filesystem.

#include "cleaning/TraceView.h"
#include "core/ProblemSink.h"
#include "platform/Folder.h"
#include "platform/Platform.h"
#include "wipe/Engine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cleaning {

class TempFolderClean {
public:
    /// Works through `platform` and `engine`, with `view` as the working list; all must outlive it.
    /// `problems` may be null.
    TempFolderClean(platform::Platform& platform, wipe::Engine& engine, TraceView& view,
                    core::ProblemSink* problems);

    /// Why automatic cleaning leaves an entry alone.
    enum class Kept { No, NotAFile, OtherOwner, InUse };
    /// With `askInUse` false, whether a running program holds the file is left to the engine, which
    /// asks anyway before it writes: the question reads every process's open files and maps.
    static Kept kept(platform::Folder& folder, const platform::FileInfo& entry, bool askInUse = true);

    /// Overwrites and deletes the temporary folder `temp`'s own files, and does the same for the
    /// files of each first-level subfolder before removing it with what lies below. A subfolder
    /// that still holds anything the rules keep (or anything read-only below its first level)
    /// stays. An empty `temp` cleans nothing.
    void Clean(const std::string& temp);
    /// Overwrites `path` eleven times with 0x55 bytes, blocks 0 to round(length / 1024) of 1024
    /// bytes each (so the file may grow by up to a block), each pass reaching the device before
    /// the next, then deletes it. A missing file is left missing; a file with other names (hard
    /// links) is not overwritten, only this name is removed; anything but a plain file is left.
    void WipeFile(const std::string& path);
    /// The overwrite of WipeFile, for the entry `name` of an open folder. True when it is gone.
    bool wipeEntry(platform::Folder& folder, const std::string& name);

private:
    class Scheme;
    /// wipeEntry for an entry of the temporary folder, when the rules allow.
    void wipeIfAllowed(platform::Folder& folder, const platform::FileInfo& entry, TraceStep step);
    void cleanSubfolder(platform::Folder& parent, const platform::FileInfo& entry);
    /// Walks everything below `dir`. With `remove` false, tells whether all of it may go; with it
    /// true, removes what may and tells whether all of it went.
    bool clearBelow(platform::Folder& dir, bool remove);
    void skipped(const std::string& item, const std::string& reason);

    platform::Platform& m_platform;
    wipe::Engine& m_engine;
    TraceView& m_view;
    core::ProblemSink* m_problems;
    std::vector<std::uint8_t> m_pattern;
};

} // namespace cleaning
