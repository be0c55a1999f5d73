#pragma once
// The free-space wipe's side of its window: the figures it shows while a run goes on (pass,
// increment, bytes wiped, offset and high half of the position), the two wipe buttons, and the two
// check boxes it reads once per increment ("Check to Exit Wiping", "Check to Pause Wiping").

#include "core/Currency.h"
#include "wipe/WipeView.h"

#include <cstdint>

namespace wipe {

/// Where a run stands after one increment.
struct FreeSpaceProgress {
    int pass = 0;                ///< 1..35
    core::Currency increment;    ///< bytes the position advances per increment
    std::int64_t index = 0;      ///< increments done in this pass
    std::int64_t count = 0;      ///< increments in a pass (rounded)
    core::Currency wiped;        ///< bytes counted as wiped in this pass
    core::Currency offset;       ///< the low part of the seek position, as the run keeps it
    std::int32_t high = 0;       ///< the high 32-bit half of the seek position
};

class FreeSpaceView : public WipeView {
public:
    /// Pass `pass` (1..35) begins: the pass number, the increment, one more 35th of the bar.
    virtual void passStarted(int /*pass*/, core::Currency /*increment*/) {}
    /// One increment has been written (three blocks over the same place).
    virtual void progress(const FreeSpaceProgress& /*now*/) {}
    /// "Check to Exit Wiping" is ticked.
    virtual bool exitRequested() = 0;
    /// Ticks or unticks "Check to Exit Wiping".
    virtual void setExitRequested(bool /*on*/) {}
    /// "Check to Pause Wiping" is ticked.
    virtual bool pauseRequested() { return false; }
    /// Enables or disables the two wipe buttons.
    virtual void setWipeEnabled(bool /*enabled*/) {}
    /// The free bytes measured for the run.
    virtual void freeSpaceMeasured(core::Currency /*bytes*/) {}
};

} // namespace wipe
