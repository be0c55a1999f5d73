#pragma once
// The recycle bin on Linux: the freedesktop.org Trash. Its folders are the home trash
// ($XDG_DATA_HOME/Trash) and, at the top of each mounted filesystem, .Trash/<uid> (only when
// .Trash is a real folder with the sticky bit, as freedesktop.org requires of it) and
// .Trash-<uid>. A root names one filesystem: a path on it, or a drive of the Wine prefix ("D:\").
// Emptying never follows a link: a link in a trash folder is removed, never what it points to,
// and a folder on another filesystem inside a trash folder is left alone. The sound flag is
// honoured with the desktop's "trash-empty" sound where canberra-gtk-play is installed.
// The recent-documents list is recently-used.xbel in $XDG_DATA_HOME. Anyone who can write to a
// drive's trash folder can plant a FIFO or a device as a record: records are read only when they
// are regular files, and each one refused is named through takeRefused.

#include "platform/RecycleBin.h"
#include "platform/linux/Environment.h"

#include <string_view>

namespace platform::linux {

/// The original path a .trashinfo file's `text` records (its Path= line in [Trash Info],
/// percent-decoded), made absolute against the filesystem's `top` when it is relative; empty when
/// the text records none.
std::string trashInfoOriginalPath(std::string_view text, const std::string& top);

class LinuxRecycleBin final : public RecycleBin {
public:
    /// Trash folders at the top of every real filesystem in the environment's mount table.
    explicit LinuxRecycleBin(Environment env);

    std::vector<TrashItem> items(const std::string& root) override;
    bool empty(const std::string& root, unsigned flags, RecycleBinUi& ui) override;
    std::vector<std::string> recentDocuments() override;
    bool clearRecentDocuments(Remover& remover) override;
    std::vector<RefusedRecord> takeRefused() override;

    /// The trash folders (each holding files/ and info/) that `root` names, existing ones only.
    std::vector<std::string> trashFolders(const std::string& root) const;

private:
    std::string recentlyUsedPath() const { return m_env.dataHome + "/recently-used.xbel"; }

    void refuse(const std::string& path, const std::string& reason);

    Environment m_env;
    std::vector<RefusedRecord> m_refused;
};

} // namespace platform::linux
