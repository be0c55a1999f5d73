#pragma once
// What both wipe engines need from whoever drives them (a window, the command line, a test): the
// message boxes, a chance to let pending events run, and a hard stop. The free-space and file views
// add their own progress figures and stop controls.

#include "core/Prompts.h"

namespace wipe {

class WipeView {
public:
    virtual ~WipeView() = default;

    /// Where questions and messages go.
    virtual core::Prompts& prompts() = 0;
    /// Lets pending events run (a window stays responsive; the command line notices Ctrl-C).
    virtual void pumpEvents() {}
    /// A request to stop at once without asking (Ctrl-C, SIGTERM, the window going away): the
    /// engine cleans up and returns, leaving whatever it has not reached yet untouched.
    virtual bool interrupted() { return false; }
};

} // namespace wipe
