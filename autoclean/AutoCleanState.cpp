#include "autoclean/AutoCleanState.h"

namespace autoclean {

AutoCleanState toggled(AutoCleanState state) {
    if (state.caption == OffCaption) {
        state.caption = OnCaption;
        state.checkEnabled = true;
    } else if (state.caption == OnCaption) {
        state.caption = OffCaption;
        state.checkEnabled = false; // TClosed is left as it is
    }
    return state;
}

AutoCleanState afterCheckTick(AutoCleanState state, bool browserRunning) {
    if (browserRunning) {
        state.checkEnabled = false;
        state.closedEnabled = true;
    }
    return state;
}

AutoCleanState afterClean(AutoCleanState state) {
    state.closedEnabled = false;
    state.checkEnabled = true;
    return state;
}

} // namespace autoclean
