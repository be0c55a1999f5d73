#pragma once
// The recycle bin on Linux: the freedesktop.org Trash. Its folders are the home trash
// ($XDG_DATA_HOME/Trash) and, at the top of each mounted filesystem, .Trash/<uid> (only when
// .Trash is a real folder with the sticky bit, as freedesktop.org requires of it) and
// .Trash-<uid>. A root names one filesystem: a path on it, or a drive of the Wine prefix ("D:\").
// Emptying never follows a link: a link in a trash folder is removed, never what it points to,
// and a folder on another filesystem inside a trash folder is left alone. The sound flag is
// honoured with the desktop's "trash-empty" sound where canberra-gtk-play is installed.
// The recent-documents list is recently-used.xbel in $XDG_DATA_HOME.

#include "platform/RecycleBin.h"
#include "platform/linux/Environment.h"


namespace platform::linux {

class LinuxRecycleBin final : public RecycleBin {
public:
    /// Trash folders at the top of every real filesystem in the environment's mount table.
    explicit LinuxRecycleBin(Environment env);

    std::vector<TrashItem> items(const std::string& root) override;
    bool empty(const std::string& root, unsigned flags, RecycleBinUi& ui) override;
    std::vector<std::string> recentDocuments() override;
    bool clearRecentDocuments() override;

    /// The trash folders (each holding files/ and info/) that `root` names, existing ones only.
    std::vector<std::string> trashFolders(const std::string& root) const;

private:
    std::string recentlyUsedPath() const { return m_env.dataHome + "/recently-used.xbel"; }

    Environment m_env;
};

} // namespace platform::linux
