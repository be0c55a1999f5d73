#include "proxies/ProxyPlatform.h"

namespace platform {

struct ProxyPlatform::Facilities {
    explicit Facilities(Platform& real)
        : rawFiles(real.rawFiles()), fileSystem(real.fileSystem()), drives(real.drives()),
          registry(real.registry()), knownFolders(real.knownFolders()), processes(real.processes()),
          memoryStatus(real.memoryStatus()), virtualMemory(real.virtualMemory()), shell(real.shell()),
          connectivity(real.connectivity()), urlCache(real.urlCache()), urlHistory(real.urlHistory()),
          recycleBin(real.recycleBin()) {}

    ProxyRawFiles rawFiles;
    ProxyFileSystem fileSystem;
    ProxyDrives drives;
    ProxyRegistry registry;
    ProxyKnownFolders knownFolders;
    ProxyProcesses processes;
    ProxyMemoryStatus memoryStatus;
    ProxyVirtualMemory virtualMemory;
    ProxyShell shell;
    ProxyConnectivity connectivity;
    ProxyUrlCache urlCache;
    ProxyUrlHistory urlHistory;
    ProxyRecycleBin recycleBin;
};

ProxyPlatform::ProxyPlatform(Platform& real)
    : m_real(real), m_facilities(std::make_unique<Facilities>(real)) {}

ProxyPlatform::ProxyPlatform(std::unique_ptr<Platform> real)
    : m_owned(std::move(real)), m_real(*m_owned), m_facilities(std::make_unique<Facilities>(m_real)) {}

ProxyPlatform::~ProxyPlatform() = default;

RawFiles& ProxyPlatform::rawFiles() { return m_facilities->rawFiles; }
FileSystem& ProxyPlatform::fileSystem() { return m_facilities->fileSystem; }
Drives& ProxyPlatform::drives() { return m_facilities->drives; }
Registry& ProxyPlatform::registry() { return m_facilities->registry; }
KnownFolders& ProxyPlatform::knownFolders() { return m_facilities->knownFolders; }
Processes& ProxyPlatform::processes() { return m_facilities->processes; }
MemoryStatus& ProxyPlatform::memoryStatus() { return m_facilities->memoryStatus; }
VirtualMemory& ProxyPlatform::virtualMemory() { return m_facilities->virtualMemory; }
Shell& ProxyPlatform::shell() { return m_facilities->shell; }
Connectivity& ProxyPlatform::connectivity() { return m_facilities->connectivity; }
UrlCache& ProxyPlatform::urlCache() { return m_facilities->urlCache; }
UrlHistory& ProxyPlatform::urlHistory() { return m_facilities->urlHistory; }
RecycleBin& ProxyPlatform::recycleBin() { return m_facilities->recycleBin; }

} // namespace platform
