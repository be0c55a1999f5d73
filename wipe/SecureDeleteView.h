#pragma once
// The secure delete's side of its window: the pass number and the values being written, byte
// progress for the command line's bar, and the "EndWipe" stop flag read before every block.

#include "wipe/WipeView.h"

#include <cstdint>
#include <string>

namespace wipe {

/// Where the wipe of one file stands.
struct FileWipeProgress {
    std::string path;
    int pass = 0;               ///< 1..35
    std::uint64_t written = 0;  ///< bytes written in this pass so far
    std::uint64_t total = 0;    ///< bytes this pass writes: one block per position
};

class SecureDeleteView : public WipeView {
public:
    /// Pass `pass` (1..35) of the file at `path` begins: the pass number and one more 35th of the bar.
    virtual void passStarted(const std::string& /*path*/, int /*pass*/) {}
    /// The line describing the three values of the pass ("Block1: 0x38 , Block2: 0x55 , ...").
    virtual void passValues(const std::string& /*text*/) {}
    /// Bytes written so far in this pass.
    virtual void progress(const FileWipeProgress& /*now*/) {}
    /// The stop flag reads "EndWipe".
    virtual bool stopRequested() = 0;
};

} // namespace wipe
