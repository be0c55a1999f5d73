#include "platform/linux/LinuxRegistry.h"

#include "platform/linux/Descriptors.h"
#include "platform/linux/ReplaceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

LinuxRegistry::FileStamp stampOf(const struct stat& st) {
    return {static_cast<unsigned long long>(st.st_dev), static_cast<unsigned long long>(st.st_ino),
            static_cast<unsigned long long>(st.st_size), st.st_mtim.tv_sec, st.st_mtim.tv_nsec};
}

std::string joinKey(const std::string& base, const std::string& sub) {
    if (base.empty())
        return sub;
    if (sub.empty())
        return base;
    return base + "\\" + sub;
}

} // namespace

LinuxRegistry::LinuxRegistry(Environment env)
    : LinuxRegistry(std::move(env), "/tmp/.wine-" + std::to_string(::getuid())) {}

LinuxRegistry::LinuxRegistry(Environment env, std::string serverRoot)
    : m_env(std::move(env)), m_serverRoot(std::move(serverRoot)) {}

std::string LinuxRegistry::serverDirectory() const {
    // Wine names the folder after the prefix folder itself, links followed.
    struct stat st {};
    if (::stat(m_env.winePrefix.c_str(), &st) != 0)
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

bool LinuxRegistry::load() {
    struct stat st {};
    m_refused = false;
    if (::stat(hivePath().c_str(), &st) != 0) {
        m_loaded = false;
        return false;
    }
    if (m_loaded && stampOf(st) == m_stamp)
        return true;
    // The hive is read only as a regular file: a FIFO or a device in its place would block the
    // read or feed it without end.
    FileText file = readRegularFile(AT_FDCWD, hivePath(), std::numeric_limits<std::size_t>::max(), true);
    m_refused = file.result != ReadResult::Read && file.result != ReadResult::Missing;
    m_loaded = file.result == ReadResult::Read && m_hive.parse(std::move(file.text));
    m_stamp = stampOf(file.st);
    return m_loaded;
}

long LinuxRegistry::save() {
    const std::string target = hivePath();
    if (!replaceFile(target, m_hive.text(), 0644)) {
        m_loaded = false; // the file still holds the old hive: read it again next time
        return RegResult::AccessDenied;
    }
    // The copy in memory is what the file now holds: only its identity needs taking again.
    struct stat st {};
    if (::stat(target.c_str(), &st) == 0)
        m_stamp = stampOf(st);
    else
        m_loaded = false;
    return RegResult::Success;
}

template <typename Change> long LinuxRegistry::modify(Change change) {
    if (serverRunning())
        return RegResult::SharingViolation;
    if (!load())
        return RegResult::FileNotFound;
    const long result = change(static_cast<std::int64_t>(std::time(nullptr)));
    if (result != RegResult::Success) {
        m_loaded = false; // the change may have started: forget the copy
        return result;
    }
    return save();
}

bool LinuxRegistry::pathOf(RegKey key, std::string& path) const {
    if (key == CurrentUserRoot) {
        path.clear();
        return true;
    }
    const auto it = m_handles.find(key);
    if (it == m_handles.end())
        return false;
    path = it->second;
    return true;
}

RegKey LinuxRegistry::newHandle(const std::string& path) {
    const RegKey handle = m_nextHandle;
    m_nextHandle += 4;
    m_handles[handle] = path;
    return handle;
}

long LinuxRegistry::resolve(RegKey root, const std::string& subKey, std::string& path) {
    std::string base;
    if (!pathOf(root, base))
        return RegResult::InvalidHandle;
    if (!load())
        return m_refused ? RegResult::AccessDenied : RegResult::FileNotFound;
    path = joinKey(base, subKey);
    return RegResult::Success;
}

long LinuxRegistry::openKey(RegKey root, const std::string& subKey, RegKey& result) {
    std::string path;
    if (const long rc = resolve(root, subKey, path); rc != RegResult::Success)
        return rc;
    if (!m_hive.hasKey(path))
        return RegResult::FileNotFound;
    result = newHandle(path);
    return RegResult::Success;
}

long LinuxRegistry::createKey(RegKey root, const std::string& subKey, RegKey& result) {
    std::string path;
    if (const long rc = resolve(root, subKey, path); rc != RegResult::Success)
        return rc;
    if (!m_hive.hasKey(path)) {
        const long rc = modify([&](std::int64_t now) {
            m_hive.createKey(path, now);
            return RegResult::Success;
        });
        if (rc != RegResult::Success)
            return rc;
    }
    result = newHandle(path);
    return RegResult::Success;
}

long LinuxRegistry::queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                               std::uint32_t* size) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (data && !size)
        return RegResult::InvalidParameter;
    if (!load() || !m_hive.hasKey(path))
        return RegResult::FileNotFound;
    const winehive::HiveValue* value = m_hive.value(path, name);
    if (!value)
        return RegResult::FileNotFound;
    if (type)
        *type = value->type;
    const auto needed = static_cast<std::uint32_t>(value->data.size());
    if (!data) {
        if (size)
            *size = needed;
        return RegResult::Success;
    }
    if (*size < needed) {
        *size = needed;
        return RegResult::MoreData;
    }
    std::memcpy(data, value->data.data(), needed);
    *size = needed;
    return RegResult::Success;
}

long LinuxRegistry::setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                             std::uint32_t size) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!data && size)
        return RegResult::InvalidParameter;
    winehive::HiveValue value;
    value.type = type;
    if (data)
        value.data.assign(data, data + size);
    return modify([&](std::int64_t now) {
        if (!m_hive.hasKey(path))
            return RegResult::FileNotFound;
        m_hive.setValue(path, name, value, now);
        return RegResult::Success;
    });
}

long LinuxRegistry::deleteValue(RegKey key, const std::string& name) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!load() || !m_hive.value(path, name))
        return RegResult::FileNotFound;
    return modify([&](std::int64_t now) {
        return m_hive.deleteValue(path, name, now) ? RegResult::Success : RegResult::FileNotFound;
    });
}

long LinuxRegistry::closeKey(RegKey key) {
    if (key == CurrentUserRoot)
        return RegResult::Success;
    return m_handles.erase(key) ? RegResult::Success : RegResult::InvalidHandle;
}

long LinuxRegistry::valueNames(RegKey key, std::vector<std::string>& names) {
    names.clear();
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!load() || !m_hive.hasKey(path))
        return RegResult::FileNotFound;
    names = m_hive.valueNames(path);
    return RegResult::Success;
}

} // namespace platform::linux
