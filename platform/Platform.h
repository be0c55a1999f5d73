#pragma once
// The operating system as the rest of the program sees it: one small interface per facility,
// collected here. main() builds the native platform once, from the process's environment, and
// passes it down by reference; tests build it from an environment whose HOME, TMPDIR, XDG_*_HOME and
// WINEPREFIX point at scratch folders.

#include "platform/Connectivity.h"
#include "platform/Drives.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/KnownFolders.h"
#include "platform/MemoryStatus.h"
#include "platform/Processes.h"
#include "platform/RawFiles.h"
#include "platform/RecycleBin.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/UrlCache.h"
#include "platform/UrlHistory.h"
#include "platform/VirtualMemory.h"

#include <memory>

namespace platform {

class Platform {
public:
    virtual ~Platform() = default;

    virtual RawFiles& rawFiles() = 0;
    virtual FileSystem& fileSystem() = 0;
    virtual Drives& drives() = 0;
    virtual Registry& registry() = 0;
    virtual KnownFolders& knownFolders() = 0;
    virtual Processes& processes() = 0;
    virtual MemoryStatus& memoryStatus() = 0;
    virtual VirtualMemory& virtualMemory() = 0;
    virtual Shell& shell() = 0;
    virtual Connectivity& connectivity() = 0;
    virtual UrlCache& urlCache() = 0;
    virtual UrlHistory& urlHistory() = 0;
    virtual RecycleBin& recycleBin() = 0;
};

/// The platform of the machine the program runs on, its roots taken from `env`.
std::unique_ptr<Platform> createNative(const Environment& env = processEnvironment());

} // namespace platform
