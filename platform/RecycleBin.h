#pragma once
// The recycle bin (on Linux the freedesktop.org Trash) and the shell's recent-documents list.

#include <string>

namespace platform {

namespace EmptyFlags {
constexpr unsigned NoConfirmation = 1;
constexpr unsigned NoProgressUi = 2;
constexpr unsigned NoSound = 4;
} // namespace EmptyFlags

class RecycleBin {
public:
    virtual ~RecycleBin() = default;

    /// SHEmptyRecycleBinA: empties the bin of the drive `root`, or of every drive when it is empty.
    virtual bool empty(const std::string& root, unsigned flags) = 0;
    /// SHAddToRecentDocs with no item: clears the shell's list of recent documents.
    virtual bool clearRecentDocuments() = 0;
};

} // namespace platform
