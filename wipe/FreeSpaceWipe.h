#pragma once
// The free-space wipe: fills the free space of a drive with the temporary file WNXTEMP.000 and
// writes it over in the 35 passes of the Gutmann method, deleting the file after each pass, so
// that what deleted files left in the free space is overwritten. A run advances by a fixed
// increment, laying three blocks over the same place per increment, and reads the exit and pause
// check boxes once per increment. Only what the three blocks leave behind is written: each byte of a
// pass goes into the file once. Every pass reaches the device before the file is deleted, and the
// file is removed on every way out of a run, errors included.
//
// A run works in one open folder: the drive's kind, its free space and every pass's file are all
// taken from it, never from the folder's path again, so a folder on the way to it that is swapped
// in between cannot make the wipe judge one drive and fill another.

#include "core/Currency.h"
#include "core/ProblemSink.h"
#include "platform/Folder.h"
#include "platform/Platform.h"
#include "wipe/FreeSpaceView.h"
#include "wipe/PatternRandom.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace wipe {

class FreeSpaceWipe {
public:
    enum class Outcome {
        Refused,   ///< wrong drive kind, no medium, or the temporary file's name taken: a message
                   ///< was shown and nothing written
        Completed, ///< all 35 passes ran
        Exited,    ///< stopped through the exit request or an interruption; the file is gone
    };

    /// 2,147,483,648 / 1024 bytes: the increment on fixed drives.
    static core::Currency fixedIncrement();
    /// 1,457,664 / 1024 = 1423.5 bytes: the increment on removable drives.
    static core::Currency removableIncrement();

    FreeSpaceWipe(platform::Platform& platform, FreeSpaceView& view, core::ProblemSink& problems);

    /// The temporary file's path in folder `dir`.
    std::string tempPath(const std::string& dir) const;
    /// The bytes the caller may still write on the drive holding `dir`, whole bytes; 0 on failure.
    /// For showing only: a run measures its own open folder.
    core::Currency freeSpace(const std::string& dir);
    /// The same for the drive the open folder `folder` lies on.
    core::Currency freeSpace(const platform::Folder& folder);

    /// Whether the drive of `folder`, the open folder `dir` (null when it could not be opened), is
    /// of the kind asked for (fixed, or removable with a medium); when not, shows the refusal
    /// message (naming the filesystem's type when the drive is neither kind) and returns false.
    bool accepts(const std::string& dir, const platform::Folder* folder, bool removable);
    /// Whether the temporary file's name is free in `folder`, the open folder `dir` (null: nothing
    /// to look in); when something has the name, says why the wipe will not run and returns false.
    /// The wipe never writes into a file it did not create.
    bool tempNameFree(platform::Folder* folder, const std::string& dir);
    /// "Wipe Hard Drive FreeSpace": refuses with its message unless `dir`'s drive is fixed, else
    /// runs with the fixed increment over the free space measured now. Errors of the file object
    /// propagate (FileError) after the temporary file has been removed and the buttons re-enabled.
    Outcome wipeFixed(const std::string& dir);
    /// "Wipe A:\ or Small Drives": the same for a removable drive with a medium in it.
    Outcome wipeRemovable(const std::string& dir);
    /// The run itself: WNXTEMP.000 in `folder`, the open folder `dir` (null when it could not be
    /// opened: the run then fails to open its file), `freeBytes` (whole bytes) to cover, `increment`
    /// bytes per step. Every pass creates the file anew, exclusively; refused as tempNameFree()
    /// says when the name is taken. Leaves the wipe buttons disabled after a complete run.
    Outcome run(platform::Folder* folder, const std::string& dir, core::Currency freeBytes, core::Currency increment);
    /// The same in the folder `dir`, opened now.
    Outcome run(const std::string& dir, core::Currency freeBytes, core::Currency increment);

    /// "Exit Program", with the wipe buttons' state: true when the window may close now. With the
    /// buttons disabled, asks whether to quit and on Yes ticks the exit request, which a running
    /// wipe confirms at its next increment; when no run is left to read it (the buttons stay
    /// disabled after a complete run), Yes closes at once.
    bool requestQuit(bool wipeEnabled);
    /// After the last pass, read the temporary file back from the device past the system's cache
    /// and compare it with what the pass wrote, before it is removed.
    void setVerify(bool verify) { m_verify = verify; }
    /// Whether the last complete run read its last pass back and found it as written.
    bool verified() const { return m_verified; }
    /// What the read-back of the last complete run found, in a sentence for a window.
    const std::string& verifyOutcome() const { return m_verifyOutcome; }
    /// Whether a run is in progress.
    bool running() const { return m_running; }

    /// When `dir` holds a temporary file that no running wipe holds open (a crash left it), asks
    /// whether to remove it and does on Yes. True when a stale file was found and removed.
    bool offerStaleRemoval(const std::string& dir);

private:
    Outcome start(const std::string& dir, bool removable);
    bool exitConfirmed();
    /// One write of a pass: where it began, and the block whose first `length` bytes it wrote.
    struct Write {
        std::int64_t start;
        std::size_t length;
        const std::vector<std::uint8_t>* block;
        std::int64_t end() const { return start + static_cast<std::int64_t>(length); }
    };
    void verifyLastPass(platform::RawFile& file, const std::string& path, const std::vector<Write>& pieces);
    void pause();

    platform::Platform& m_platform;
    FreeSpaceView& m_view;
    core::ProblemSink& m_problems;
    PatternRandom m_random;
    bool m_running = false;
    bool m_verify = false;
    bool m_verified = false;
    std::string m_verifyOutcome;
};

} // namespace wipe
