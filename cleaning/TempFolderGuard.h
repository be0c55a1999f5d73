#pragma once
// Which temporary folder the temp clean may take at all, decided where every clean and preview of
// it starts. The temporary folder comes from the environment (TMPDIR), so it can name anything:
// the home folder, `/`, a system folder, another user's folder, or the shared /tmp that the X
// server, other users and the system's services keep their files in. The answer is decided on the
// opened folder's identity (filesystem and file number, compared with the home folder, its
// ancestors and the system folders opened in turn), never on the path's text, so no spelling of a
// path (links, "..", doubled separators) gets past it.

#include "platform/Folder.h"
#include "platform/Platform.h"

#include <string>

namespace cleaning {

/// Why the open temporary folder `temp` must not be cleaned, or empty when it may be. Refused: the
/// root folder, the home folder and every folder above it, a system folder or a folder inside
/// one (a shared temporary folder such as /var/tmp excepted), a folder of another user that is
/// not a shared temporary folder, and, for root started without sudo, a shared temporary folder,
/// since whose files in it are whose cannot then be told.
std::string TempFolderRefusal(platform::Platform& platform, platform::Folder& temp);

/// TempFolderRefusal for the folder at `path`, opened here; a path that is no folder is refused.
std::string TempFolderRefusal(platform::Platform& platform, const std::string& path);

/// The warning the main window shows while the program runs with root's rights; empty for an
/// ordinary user.
std::string RunAsWarning(platform::RunAs runAs);

/// The main window's line for a temporary folder `path` that is refused for `reason`.
std::string TempFolderRefusedLine(const std::string& path, const std::string& reason);

/// Whether the entry `name` at the top of a temporary folder belongs to the system's services and
/// is never cleaned, whoever owns it: the X server's and ICE's locks and socket folders, and the
/// private folders systemd gives its services.
bool IsServiceEntry(const std::string& name);

} // namespace cleaning
