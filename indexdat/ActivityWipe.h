#pragma once
// The activity overwrite: a record file is never removed, its first 1024 bytes (the header the
// browser looks for) are kept, and everything behind them is overwritten in 1024-byte blocks, three
// passes a round for eleven rounds. Passes A and B write each block as a tagged text value (a
// 2-byte type tag 8 and a 2-byte length 1024 before the bytes), so that each block's tag is covered
// by the next block and the last block reaches four bytes further; a file of at least 513 bytes
// thus always ends as 1024 kept bytes and 1024 x blocks + 4 blanks. Every pass reaches the device
// before the next one starts.

#include <cstdint>
#include <functional>
#include <string>

namespace core {
class ProblemSink;
class VerdictSink;
}
namespace platform {
class Platform;
}

namespace indexdat {

/// The number of blocks overwritten in a file of `length` bytes: length / 1024 rounded half to
/// even (511 and 512 give 0, 513 gives 1, 1536 and 2560 give 2).
std::int64_t blockCount(std::uint64_t length);

/// The length a file of `length` bytes has after WipeFileContents: unchanged below 513 bytes,
/// else 1024 x (blockCount + 1) + 4 (16384 bytes become 17412).
std::uint64_t lengthAfterWipe(std::uint64_t length);

/// Called after every block and every round with the fraction of the work done (0..1); the window
/// lets pending events run, the command line draws its progress bar. False stops the overwrite
/// (Ctrl-C): the file keeps what is written so far.
using WipeProgress = std::function<bool(double fractionDone)>;

/// Overwrites the recorded activity of the file at `path` through the destruction engine: the
/// three passes eleven times over every block after the first 1024 bytes, each pass on the device
/// before the next. A missing file, a link, a file with other names or anything but a plain file is
/// left alone, and so is a file that a running program has open or mapped (the browser); the file
/// is made writable (read-only cleared, not restored) only once it is known to be the only name.
/// Each failure is told to `problems` when given, never to the user; `verdicts` hears the outcome.
void WipeFileContents(platform::Platform& platform, const std::string& path, const WipeProgress& progress,
                      core::ProblemSink* problems = nullptr, core::VerdictSink* verdicts = nullptr);

} // namespace indexdat
