// The Windows platform: every facility's backend over the Win32 wide-character calls, with the
// roots (temporary folder, profile) read from the environment it is built from.

#include "platform/Platform.h"
#include "platform/windows/WindowsConnectivity.h"
#include "platform/windows/WindowsDrives.h"
#include "platform/windows/WindowsFileSystem.h"
#include "platform/windows/WindowsKnownFolders.h"
#include "platform/windows/WindowsMemoryStatus.h"
#include "platform/windows/WindowsProcesses.h"
#include "platform/windows/WindowsRawFiles.h"
#include "platform/windows/WindowsRecycleBin.h"
#include "platform/windows/WindowsRegistry.h"
#include "platform/windows/WindowsShell.h"
#include "platform/windows/WindowsUrlCache.h"
#include "platform/windows/WindowsUrlHistory.h"
#include "platform/windows/WindowsVirtualMemory.h"

namespace platform {
namespace windows {
namespace {

class WindowsPlatform final : public Platform {
public:
    explicit WindowsPlatform(const Environment& env) : m_knownFolders(env) {}

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
    WindowsRawFiles m_rawFiles;
    WindowsFileSystem m_fileSystem;
    WindowsDrives m_drives;
    WindowsRegistry m_registry;
    WindowsKnownFolders m_knownFolders;
    WindowsProcesses m_processes;
    WindowsMemoryStatus m_memoryStatus;
    WindowsVirtualMemory m_virtualMemory;
    WindowsShell m_shell;
    WindowsConnectivity m_connectivity;
    WindowsUrlCache m_urlCache;
    WindowsUrlHistory m_urlHistory;
    WindowsRecycleBin m_recycleBin;
};

} // namespace
} // namespace windows

std::unique_ptr<Platform> createNative(const Environment& env) {
    return std::make_unique<windows::WindowsPlatform>(env);
}

} // namespace platform
