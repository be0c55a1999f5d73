#include "platform/linux/LinuxRegistry.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/ReplaceFile.h"

#include <cstdio>
#include <limits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

class UserReg final : public winehive::HiveFile {
public:
    UserReg(const LinuxRegistry& registry, std::string path) : m_registry(registry), m_path(std::move(path)) {}

    std::string stamp() override {
        struct stat st {};
        return ::stat(m_path.c_str(), &st) == 0 ? stateStamp(st) : std::string();
    }

    Read read(std::string& text, std::string& stamp) override {
        // A FIFO or a device in the hive's place would block the read or feed it without end.
        FileText file = readRegularFile(AT_FDCWD, m_path, std::numeric_limits<std::size_t>::max(), true);
        stamp = stateStamp(file.st);
        text = std::move(file.text);
        return file.result == ReadResult::Read      ? Read::Done
               : file.result == ReadResult::Missing ? Read::Missing
                                                    : Read::Refused;
    }

    bool replace(const std::string& text) override { return replaceFile(m_path, text, 0644); }

    bool inUse() override { return m_registry.serverRunning(); }

private:
    const LinuxRegistry& m_registry;
    std::string m_path;
};

} // namespace

LinuxRegistry::LinuxRegistry(const Environment& env)
    : LinuxRegistry(env, env.wineServers.empty() ? "/tmp/.wine-" + std::to_string(::getuid()) : env.wineServers) {}

LinuxRegistry::LinuxRegistry(const Environment& env, const std::string& serverRoot)
    : HiveRegistry(std::make_unique<UserReg>(*this, env.winePrefix + "/user.reg")), m_prefix(env.winePrefix),
      m_serverRoot(serverRoot) {}

std::string LinuxRegistry::serverDirectory() const {
    // Wine names the folder after the prefix folder itself, links followed.
    struct stat st {};
    if (::stat(m_prefix.c_str(), &st) != 0)
        return {};
    char name[64];
    std::snprintf(name, sizeof name, "/server-%llx-%llx", static_cast<unsigned long long>(st.st_dev),
                  static_cast<unsigned long long>(st.st_ino));
    return m_serverRoot + name;
}

bool LinuxRegistry::serverRunning() const {
    const std::string dir = serverDirectory();
    if (dir.empty())
        return false;
    const int fd = ::open((dir + "/lock").c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct flock probe {};
    probe.l_type = F_WRLCK;
    probe.l_whence = SEEK_SET;
    const bool locked = ::fcntl(fd, F_GETLK, &probe) == 0 && probe.l_type != F_UNLCK;
    ::close(fd);
    return locked;
}

} // namespace platform::linux
