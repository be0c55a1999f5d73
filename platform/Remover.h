#pragma once
// How a facility that finds what is to go (a bin's items, a browser's cache and session files, the
// list of recent documents) has it removed or emptied. The cleaning layer hands down the program's destruction engine, so those removals
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
    /// Writes `content` in place of what the plain file `name` of `folder` holds, the old bytes
    /// overwritten on the drive first: a list emptied this way leaves nothing of itself behind. A
    /// link or a file that may not be written is left as it is. True when the file holds `content`.
    virtual bool rewrite(Folder& folder, const std::string& name, const std::string& content) = 0;

protected:
    ~Remover() = default;
};

} // namespace platform
