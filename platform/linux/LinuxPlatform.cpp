// The Linux platform: every facility's backend, built from one reading of the environment.

#include "browsers/CacheStore.h"
#include "browsers/HistoryStore.h"
#include "platform/Platform.h"
#include "platform/linux/BrowserProfiles.h"
#include "platform/linux/Environment.h"
#include "platform/linux/LinuxConnectivity.h"
#include "platform/linux/LinuxDrives.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxKnownFolders.h"
#include "platform/linux/LinuxProfileFiles.h"
#include "platform/linux/LinuxMemoryStatus.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxRawFiles.h"
#include "platform/linux/LinuxRecycleBin.h"
#include "platform/linux/LinuxRegistry.h"
#include "platform/linux/LinuxShell.h"
#include "platform/linux/LinuxVirtualMemory.h"

namespace platform {
namespace linux {
namespace {

class LinuxPlatform final : public Platform {
public:
    explicit LinuxPlatform(const Environment& env)
        : m_drives(env.mountInfo), m_registry(env), m_knownFolders(env), m_memoryStatus(env.mountInfo), m_urlCache(profileFiles(), userFolders(env)),
          m_urlHistory(profileFiles(), userFolders(env)), m_recycleBin(env) {}

    RawFiles& rawFiles() override { return m_rawFiles; }
    FileSystem& fileSystem() override { return m_fileSystem; }
    Drives& drives() override { return m_drives; }
    Registry& registry() override { return m_registry; }
    KnownFolders& knownFolders() override { return m_knownFolders; }
    Processes& processes() override { return m_processes; }
    MemoryStatus& memoryStatus() override { return m_memoryStatus; }
    VirtualMemory& virtualMemory() override { return m_virtualMemory; }
    Shell& shell() override { return m_shell; }
    Connectivity& connectivity() override { return m_connectivity; }
    UrlCache& urlCache() override { return m_urlCache; }
    UrlHistory& urlHistory() override { return m_urlHistory; }
    RecycleBin& recycleBin() override { return m_recycleBin; }

private:
    LinuxRawFiles m_rawFiles;
    LinuxFileSystem m_fileSystem;
    LinuxDrives m_drives;
    LinuxRegistry m_registry;
    LinuxKnownFolders m_knownFolders;
    LinuxProcesses m_processes;
    LinuxMemoryStatus m_memoryStatus;
    LinuxVirtualMemory m_virtualMemory;
    LinuxShell m_shell;
    LinuxConnectivity m_connectivity;
    browsers::CacheStore m_urlCache;
    browsers::HistoryStore m_urlHistory;
    LinuxRecycleBin m_recycleBin;
};

} // namespace
} // namespace linux

std::unique_ptr<Platform> createNative(const Environment& env) {
    return std::make_unique<linux::LinuxPlatform>(linux::Environment::from(env));
}

} // namespace platform
