#pragma once
// The secure delete: each chosen file is overwritten in place in the 35 passes of the Gutmann
// method, cut to length 0 and deleted; a folder's own files get the same treatment before the
// folder is deleted with everything below it. A pass writes blocks of a fifth of the file's length,
// three times over the same bytes, and reaches the device before the next pass. The "EndWipe" stop
// flag is read before every block position; once set, each file still to be wiped is only cut and
// deleted. Failing steps are skipped (and reported to the problem sink), as the window always did.
//
// Everything happens inside open folders, never through a path's text: each pass opens the file
// by name in its open folder and goes on only if it is still the file the wipe started with. A
// file with other hard links is never overwritten (its other names would lose their contents):
// only the chosen name is removed, and the sink is told. Mount points (bind mounts included) are
// neither written nor entered nor removed.

#include "core/ProblemSink.h"
#include "platform/Platform.h"
#include "wipe/Gutmann.h"
#include "wipe/PatternRandom.h"
#include "wipe/SecureDeleteView.h"

#include <string>
#include <vector>

namespace platform {
class Folder;
}

namespace wipe {

class SecureDelete {
public:
    SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems);
    /// The same with the random passes drawn from `random` (reproducible runs).
    SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                 PatternRandom random);

    /// "&SecureWipeFiles": with `fileName` (the name last clicked) empty, says "You must select a
    /// file!"; otherwise asks for confirmation and wipes each of `paths`. False when nothing ran.
    bool WipeSelectedFiles(const std::string& fileName, const std::vector<std::string>& paths);
    /// "SecureWipeDirectory": asks for confirmation, wipes the folder's own files, then deletes the
    /// folder with everything below it (on its own filesystem only). False when not confirmed.
    bool WipeFolder(const std::string& folder);
    /// Overwrites, cuts and deletes one file. A link or other non-regular entry is only deleted,
    /// never written through. True when nothing is left at `path`.
    bool WipeFile(const std::string& path);

    /// The pass line shown above the bar: "Block1: 0x" + the code of the first decimal digit of
    /// the first value + " , Block2: 0x" + the second + " , Block3: 0x" + the third, in two or
    /// more upper-case hex digits.
    static std::string passText(const Gutmann::Values& values);

private:
    enum class Overwrite { Done, Stopped, Failed, Replaced };
    /// Wipes the entry `name` of `folder`: overwrites it when it may be, then cuts and deletes it.
    bool wipeEntry(platform::Folder& folder, const std::string& name);
    /// The 35 passes over `name`, which must stay the file `original` throughout. Failures other
    /// than a stop go to the problem sink.
    Overwrite overwrite(platform::Folder& folder, const std::string& name, const platform::FileInfo& original,
                        const std::string& shown);
    /// Writes `length` bytes of `value` at the file position. `finalAt` is the position when these
    /// bytes are the pass's last word on them (their way to the device starts at once), else -1.
    bool writeBlock(platform::RawFile& file, std::uint8_t value, std::uint64_t length, FileWipeProgress& now,
                    std::int64_t finalAt);

    platform::Platform& m_platform;
    SecureDeleteView& m_view;
    core::ProblemSink& m_problems;
    PatternRandom m_random;
    std::vector<std::uint8_t> m_chunk;
};

} // namespace wipe
