#pragma once
// The recycle bin (on Linux the freedesktop.org Trash) and the shell's recent-documents list. The
// shell's own confirmation and progress window are the caller's to show: the bin asks through
// RecycleBinUi, so the question's text stays with the code that defines the program's messages.

#include "platform/Folder.h"
#include "platform/Remover.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace platform {

namespace EmptyFlags {
constexpr unsigned NoConfirmation = 1;
constexpr unsigned NoProgressUi = 2;
constexpr unsigned NoSound = 4;
} // namespace EmptyFlags

/// One deleted item waiting in a bin.
struct TrashItem {
    std::string path;         ///< where it lies inside the bin
    std::string originalPath; ///< where it was deleted from; empty when the bin does not say
    std::uint64_t bytes = 0;  ///< its size, a folder's files added up
};

/// The bin's dialogs, shown by the caller.
class RecycleBinUi {
public:
    virtual ~RecycleBinUi() = default;

    /// Asked once before anything is removed, unless NoConfirmation: `items` items of `bytes`
    /// bytes in all. False keeps everything.
    virtual bool confirmEmpty(std::size_t items, std::uint64_t bytes) = 0;
    /// After each removed item, unless NoProgressUi.
    virtual void progress(std::size_t done, std::size_t items) = 0;
    /// Removes the items the bin finds, and the bin's own records of them.
    virtual Remover& remover() = 0;
};

/// A file of the bin's own records (an item's record of where it came from, the recent-documents
/// list) that was left unread or as it is, and why.
struct RefusedRecord {
    std::string path;
    std::string reason;
};

class RecycleBin {
public:
    virtual ~RecycleBin() = default;

    /// The items in the bin of the drive `root`, or of every drive when it is empty.
    virtual std::vector<TrashItem> items(const std::string& root) = 0;
    /// SHEmptyRecycleBinA: empties the bin of the drive `root`, or of every drive when it is empty.
    /// `flags` are EmptyFlags. True when the bin is empty afterwards; false when the user said no
    /// or some item could not be removed.
    virtual bool empty(const std::string& root, unsigned flags, RecycleBinUi& ui) = 0;
    /// The documents in the shell's list of recent documents, as addresses (file:///...).
    virtual std::vector<std::string> recentDocuments() = 0;
    /// SHAddToRecentDocs with no item: clears the shell's list of recent documents; where the list
    /// is a file, `remover` writes it anew. False when it could not, or when the list is not a file
    /// this program may replace (see takeRefused).
    virtual bool clearRecentDocuments(Remover& remover) = 0;
    /// The records the calls above refused since this was last asked, each named once: a FIFO,
    /// socket or device in a record's place is never read, and a recent-documents list that is a
    /// link (the usual way to switch recording off) is left as it is.
    virtual std::vector<RefusedRecord> takeRefused() { return {}; }
};

} // namespace platform
