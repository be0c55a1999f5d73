#pragma once
// The browser formats' way to the files of a profile on Linux: through descriptors, never through
// a link put in a file's place, never blocking on a FIFO, and SQLite through a file layer that
// cannot write.

#include "browsers/ProfileFiles.h"

namespace platform::linux {

/// The one instance; it holds no state.
browsers::ProfileFiles& profileFiles();

} // namespace platform::linux
