#pragma once
// The one piece of the program that destroys: it opens files to write them over, cuts them, removes
// files and removes trees, for every command and window that does any of that. Each item gets one
// verdict (overwritten, removed without overwriting and why, left alone and why), told to the
// caller's verdict sink, and failures are named to its problem sink.
//
// Its rules, the same on every path:
// - Items are reached only through open folders. A path named by the user is walked one folder at
//   a time and a link on the way is refused; a trailing separator or a "." never turns a link into
//   the folder it points to.
// - Only a plain file with one name, on its folder's own mount and in use by no process (open,
//   mapped, or backing a loop device) is written, and it is made writable only once that is known.
//   The checks are made on the opened file itself, and the same open file takes every pass.
// - Only the parts of a file that hold data are written, so a sparse file never fills the drive;
//   a write or flush that fails ends the overwrite with the verdict "not overwritten".
// - A file that is to go has its extra data streams (NTFS alternate data streams) written with the
//   same passes and cut before its own data; one that cannot be written leaves the file "not
//   overwritten".
// - A tree removal never follows a link and never enters or removes another mount (mount IDs from
//   the kernel, bind mounts included); a target that is itself a mount point or a filesystem's root
//   is refused before anything is touched. Every item left is named.
// - With verification asked for, the last pass is read back from the device past the cache and
//   compared with what it wrote.

#include "core/ProblemSink.h"
#include "core/Verdict.h"
#include "platform/Folder.h"
#include "platform/Platform.h"
#include "platform/Remover.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace wipe {

/// Where the bytes of one pass go: writes at offsets of the file, the holes of a sparse file
/// skipped. Handed to an OverwriteScheme by the engine.
class PassWriter {
public:
    /// The file's length: as the overwrite found it, or further where a pass wrote past its end.
    virtual std::uint64_t length() const = 0;
    /// Writes `count` bytes at `offset` (the parts inside a hole of the file are skipped). False
    /// when the write failed: the pass has failed.
    virtual bool write(std::uint64_t offset, const void* data, std::size_t count) = 0;
    /// The first offset at or after `offset` that holds data (or lies past the file's first length):
    /// a scheme that writes many small blocks skips a sparse file's holes with it.
    virtual std::uint64_t nextData(std::uint64_t offset) const = 0;
    /// The bytes from `offset` on are final for this pass: their way to the device may start now.
    virtual void startFlush(std::uint64_t offset, std::uint64_t length) = 0;

protected:
    ~PassWriter() = default;
};

/// What one kind of overwrite writes: the secure delete's 35 passes, the temp clean's eleven, the
/// activity overwrite's rounds.
class OverwriteScheme {
public:
    enum class Pass { Written, Stopped, Failed };
    virtual ~OverwriteScheme() = default;
    virtual int passes() const = 0;
    /// Writes pass `pass` (1-based) through `out`. Stopped when the user stopped the work.
    virtual Pass writePass(int pass, PassWriter& out) = 0;
    /// How the file is named in "stopped" and progress texts: whatever the scheme shows.
    virtual void starting(const std::string& /*shown*/) {}
};

struct OverwriteOptions {
    /// Cut and delete the file once written (and also when it cannot be written: its name goes).
    /// Only then are its extra data streams written too: a file that stays keeps them as they are.
    bool remove = true;
    /// With `remove`, a link, pipe, socket or device in the file's place is removed (never written
    /// through or followed) instead of being left.
    bool removeOthers = false;
    /// Only the user's own files are touched; others are left without a word (automatic cleaning).
    bool ownOnly = false;
    /// Read the last pass back from the device and compare.
    bool verify = false;
    /// A file that is not there is a failure to name (a file the user chose), not just gone.
    bool missingIsProblem = true;
    /// Without `remove`: once written over, the file is cut and holds these bytes instead.
    std::optional<std::string> replaceWith;
};

class Engine final : public platform::Remover {
public:
    /// `verdicts` and `problems` may be null.
    Engine(platform::Platform& platform, core::VerdictSink* verdicts, core::ProblemSink* problems);

    /// An item named by a path: its open parent folder and its own name in it.
    struct Target {
        std::unique_ptr<platform::Folder> parent;
        std::string name;
        std::string shown; ///< the path as the user gave it, without trailing separators
    };
    /// Walks `path` (relative ones from the working folder) one open folder at a time, refusing a
    /// link anywhere on the way; "." and ".." are taken by their text. Empty, with `why` set, when
    /// the path cannot be walked or names a filesystem's root.
    std::optional<Target> locate(const std::string& path, std::string& why);

    /// Overwrites the entry `name` of `folder` with `scheme` and, with `options.remove`, cuts and
    /// deletes it; anything that may not be written is left, or with `remove` only its name goes.
    core::Verdict overwrite(platform::Folder& folder, const std::string& name, OverwriteScheme& scheme,
                            const OverwriteOptions& options);
    /// Removes the file, link or other non-folder entry `name` without writing it, with the reason
    /// it was not overwritten (empty: none to give, as for a link).
    core::Verdict remove(platform::Folder& folder, const std::string& name, const std::string& whyNotOverwritten = {});
    /// Why the folder `name` of `parent` may not be removed as a tree (not a folder, a link, a mount
    /// point); empty when it may. Asked before anything is done to it.
    std::string treeRefusal(platform::Folder& parent, const std::string& name);
    /// Removes the folder `name` of `parent` with everything below it, on its own mount only,
    /// following no link. Files `keep` says yes to stay (their folders with them): what an
    /// overwrite before left alone. True when it is gone; every item left is named.
    bool removeTree(platform::Folder& parent, const std::string& name,
                    const std::function<bool(const platform::FileInfo&)>& keep = {});
    /// Cuts and removes a file of the program's own (the free-space wipe's temporary file) while
    /// `name` still means the file `expected`. No user's item: only a failure is told.
    bool removeOwnFile(platform::Folder& folder, const std::string& name, const platform::FileInfo& expected);
    /// Removes the entry `name` of `folder` without writing it: a folder as a tree, anything else
    /// as a file. What the facilities that only find what is to go (bins, browser caches) call.
    bool removeEntry(platform::Folder& folder, const std::string& name) override;
    /// Overwrites the file `name` of `folder` once with zeros and leaves `content` in it.
    bool rewrite(platform::Folder& folder, const std::string& name, const std::string& content) override;
    /// Removes the empty folder `name` of `parent`. True when it is gone.
    bool removeEmptyFolder(platform::Folder& parent, const std::string& name);

    /// Tells the sinks; for the schemes' callers, which add their own verdicts (a refusal up front).
    void report(const core::Verdict& verdict);

private:
    /// What writing every pass over one stream of a file came to.
    struct Passes {
        enum class Outcome { Written, Stopped, Failed };
        Outcome outcome = Outcome::Written;
        int pass = 0;              ///< the last pass begun
        std::uint64_t bytes = 0;   ///< written in all
        std::string why;           ///< for Failed: which pass, and the system's reason
        std::string verifyProblem; ///< what a read-back found amiss; empty when all was as written
    };
    class FileWriter;
    /// The path `name` of `folder` is shown by.
    std::string shown(const platform::Folder& folder, const std::string& name) const;
    /// Writes each pass of `scheme` through `writer` (over `file`), every pass reaching the device
    /// before the next begins; with `verify`, the last pass's writes are remembered.
    Passes writePasses(platform::RawFile& file, FileWriter& writer, OverwriteScheme& scheme, bool verify);
    /// Overwrites the extra stream `stream` of the file `name` (the one `held` describes) with
    /// `scheme`, reads it back with `verify`, and cuts it.
    Passes overwriteStream(platform::Folder& folder, const std::string& name, const std::string& stream,
                           const platform::FileInfo& held, OverwriteScheme& scheme, bool verify);
    bool removeBelow(platform::Folder& dir, const std::function<bool(const platform::FileInfo&)>& keep);
    bool cutAndDelete(platform::Folder& folder, const std::string& name, std::unique_ptr<platform::RawFile> file,
                      const platform::FileInfo& held);
    core::Verdict verify(platform::RawFile& file, const std::vector<std::pair<std::uint64_t, std::uint64_t>>& ranges,
                         const std::vector<std::uint64_t>& digests, core::Verdict verdict);

    platform::Platform& m_platform;
    core::VerdictSink* m_verdicts;
    core::ProblemSink* m_problems;
};

/// What should be at `offset` on: fills `count` bytes of `out`.
using Expected = std::function<void(std::uint64_t offset, unsigned char* out, std::size_t count)>;

/// Reads the first `length` bytes of `file` back from the device, past the system's cache, and
/// compares them with `expected`. The offset of the first difference; -1 when all is as expected;
/// -2 when the file cannot be read back that way.
std::int64_t readBackDifference(platform::RawFile& file, std::uint64_t length, const Expected& expected);

/// The folder part and the last component of `path`: ("/a", "b") for "/a/b", (".", "b") for "b".
std::pair<std::string, std::string> splitPath(const platform::FileSystem& files, const std::string& path);

/// Whether `entry` of `folder` is a mount point (any mount, bind mounts included).
bool isMountPoint(const platform::Folder& folder, const platform::FileInfo& entry);

} // namespace wipe
