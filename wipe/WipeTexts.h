#pragma once
// The secure-deletion windows' messages, exactly as the user sees them, defined once for the
// windows, the command line and the tests.

#include "platform/Drives.h"

#include <string>

namespace wipe::texts {

inline const std::string NotFixed = "The drive you chose is not a fixed drive";
inline const std::string NotRemovable = "The drive you chose is not a removable drive";
inline const std::string InsertDisk = "Please insert disk in drive a";
inline const std::string StillRunning = "Tavi Wipe is still running. Are you sure you wish to quit?";
inline const std::string ConfirmExit = "Press Yes to exit Wiping Function";
inline const std::string MayExit = "You may now EXIT";
inline const std::string PausedFor = "Paused for ";
inline const std::string Seconds = " seconds";
inline const std::string SelectFile = "You must select a file!";
inline const std::string ConfirmFiles =
    "Are you ABSOLUTELY sure you wish to Delete Selected Files completely and FOREVER?";
inline const std::string WipeFolderPrefix = "Wipe ";
inline const std::string WipeFolderSuffix = " completely and FOREVER?";
inline const std::string StopFlagRun = "Wipe Charachter";
inline const std::string StopFlagEnd = "EndWipe";
inline const std::string TempFileName = "WNXTEMP.000";

/// Asked when a temporary file of an earlier free-space wipe is found (a crash left it behind).
std::string staleTempFile(const std::string& path, const std::string& bytes);
/// Why the free-space wipe will not start while something named like its temporary file is at `path`.
std::string tempNameTaken(const std::string& path);
/// Why the free-space wipe refuses `dir`, whose drive holds a filesystem of type `type`.
std::string driveNotWritten(const std::string& dir, const std::string& type);
/// The one-line note on what overwriting cannot reach where `path` lies (a copy-on-write
/// filesystem, a solid-state or flash device), with the README's advice; empty when `storage`
/// gives no reason for it. The command line prints it before a wipe, the windows show it.
std::string overwriteLimits(const std::string& path, const platform::Storage& storage);
/// Asked by the command line before it starts a free-space wipe.
std::string confirmFreeSpace(const std::string& dir, const std::string& bytes);

} // namespace wipe::texts
