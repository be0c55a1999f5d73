#pragma once
// The recycle bin and the recent-documents list on Windows. The bin's items come from the shell's
// bin folder; emptying asks through RecycleBinUi and then lets SHEmptyRecycleBinW do the work with
// the shell's own dialogs turned off. The recent documents are the shortcuts of the Recent folder,
// cleared with SHAddToRecentDocs.

#include "platform/RecycleBin.h"

namespace platform::windows {

class WindowsRecycleBin final : public RecycleBin {
public:
    std::vector<TrashItem> items(const std::string& root) override;
    bool empty(const std::string& root, unsigned flags, RecycleBinUi& ui) override;
    std::vector<std::string> recentDocuments() override;
    bool clearRecentDocuments(Remover& remover) override;
};

/// "file:///C:/a%20b/x.txt" for "C:\a b\x.txt": separators turned, unsafe bytes percent-encoded.
std::string fileAddress(const std::string& path);

} // namespace platform::windows
