#pragma once
// How a facility that finds what is to go (a bin's items, a browser's cache and session files) has
// it removed. The cleaning layer hands down the program's destruction engine, so those removals
// obey the same rules as every other one: no link followed, no other mount entered, every item
// left named. A facility whose system removes by itself (Windows's own cache and bin) never asks.

#include "platform/Folder.h"

#include <string>

namespace platform {

class Remover {
public:
    /// Removes the entry `name` of the open folder `folder`, whatever it is: a file, a link (never
    /// followed) or a folder with everything below it. True when it is gone, or was never there.
    virtual bool removeEntry(Folder& folder, const std::string& name) = 0;

protected:
    ~Remover() = default;
};

} // namespace platform
