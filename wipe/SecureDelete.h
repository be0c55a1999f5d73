#pragma once
// The secure delete: each chosen file is overwritten in place in the 35 passes of the Gutmann
// method, cut to length 0 and deleted; a folder's own files get the same treatment before the
// folder is deleted with everything below it. A pass lays blocks of a fifth of the file's length,
// three values over the same bytes of which the last is what is written, and reaches the device
// before the next pass. The "EndWipe" stop
// flag is read before every block position; once set, each file still to be wiped is only cut and
// deleted. Failing steps are skipped and named to the problem sink; the window itself stays quiet.
//
// What may be written, and how files and trees go, is the destruction engine's to decide (see
// Engine.h): this class adds the Gutmann passes, the questions and the progress.

#include "core/ProblemSink.h"
#include "platform/Platform.h"
#include "wipe/Gutmann.h"
#include "wipe/PatternRandom.h"
#include "wipe/Engine.h"
#include "wipe/SecureDeleteView.h"

#include <string>
#include <vector>

namespace platform {
class Folder;
}

namespace wipe {

class SecureDelete {
public:
    /// `verdicts` (may be null) hears what became of every file and folder.
    SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                 core::VerdictSink* verdicts = nullptr);
    /// The same with the random passes drawn from `random` (reproducible runs).
    SecureDelete(platform::Platform& platform, SecureDeleteView& view, core::ProblemSink& problems,
                 PatternRandom random, core::VerdictSink* verdicts = nullptr);

    /// After the last pass, read each file back from the device and compare before deleting it.
    void setVerify(bool verify) { m_verify = verify; }

    /// "&SecureWipeFiles": with `fileName` (the name last clicked) empty, says "You must select a
    /// file!"; otherwise asks for confirmation and wipes each of `paths`. False when nothing ran.
    bool WipeSelectedFiles(const std::string& fileName, const std::vector<std::string>& paths);
    /// "SecureWipeDirectory": refuses a link, a mount point or a filesystem's root before anything
    /// is touched, asks for confirmation, wipes the folder's own files, then deletes the folder
    /// with everything below it (on its own filesystem only). False when not confirmed.
    bool WipeFolder(const std::string& folder);
    /// Overwrites, cuts and deletes one file. A link or other non-regular entry is only deleted,
    /// never written through; a folder is left. True when nothing is left at `path`.
    bool WipeFile(const std::string& path);

    /// The pass line shown above the bar: "Block1: 0x" + the code of the first decimal digit of
    /// the first value + " , Block2: 0x" + the second + " , Block3: 0x" + the third, in two or
    /// more upper-case hex digits.
    static std::string passText(const Gutmann::Values& values);

private:
    class Scheme;
    bool wipeEntry(platform::Folder& folder, const std::string& name);

    SecureDeleteView& m_view;
    Engine m_engine;
    PatternRandom m_random;
    bool m_verify = false;
    std::vector<std::uint8_t> m_chunk;
};

} // namespace wipe
