#include "winehive/HiveRegistry.h"

#include <cstring>
#include <ctime>

namespace winehive {
namespace {

using platform::CurrentUserRoot;
using platform::RegKey;
namespace RegResult = platform::RegResult;

std::string joinKey(const std::string& base, const std::string& sub) {
    if (base.empty())
        return sub;
    if (sub.empty())
        return base;
    return base + "\\" + sub;
}

} // namespace

HiveRegistry::HiveRegistry(std::unique_ptr<HiveFile> file) : m_file(std::move(file)) {}

bool HiveRegistry::load() {
    m_refused = false;
    const std::string now = m_file->stamp();
    if (now.empty()) {
        m_loaded = false;
        return false;
    }
    if (m_loaded && now == m_stamp)
        return true;
    std::string text;
    const HiveFile::Read read = m_file->read(text, m_stamp);
    m_refused = read == HiveFile::Read::Refused;
    m_loaded = read == HiveFile::Read::Done && m_hive.parse(std::move(text));
    return m_loaded;
}

long HiveRegistry::save() {
    if (!m_file->replace(m_hive.text())) {
        m_loaded = false; // the file still holds the old hive: read it again next time
        return RegResult::AccessDenied;
    }
    // The copy in memory is what the file now holds: only its identity needs taking again.
    m_stamp = m_file->stamp();
    if (m_stamp.empty())
        m_loaded = false;
    return RegResult::Success;
}

template <typename Change> long HiveRegistry::modify(Change change) {
    if (m_file->inUse())
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

bool HiveRegistry::pathOf(RegKey key, std::string& path) const {
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

RegKey HiveRegistry::newHandle(const std::string& path) {
    const RegKey handle = m_nextHandle;
    m_nextHandle += 4;
    m_handles[handle] = path;
    return handle;
}

long HiveRegistry::resolve(RegKey root, const std::string& subKey, std::string& path) {
    std::string base;
    if (!pathOf(root, base))
        return RegResult::InvalidHandle;
    if (!load())
        return m_refused ? RegResult::AccessDenied : RegResult::FileNotFound;
    path = joinKey(base, subKey);
    return RegResult::Success;
}

long HiveRegistry::openKey(RegKey root, const std::string& subKey, RegKey& result) {
    std::string path;
    if (const long rc = resolve(root, subKey, path); rc != RegResult::Success)
        return rc;
    if (!m_hive.hasKey(path))
        return RegResult::FileNotFound;
    result = newHandle(path);
    return RegResult::Success;
}

long HiveRegistry::createKey(RegKey root, const std::string& subKey, RegKey& result) {
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

long HiveRegistry::queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                               std::uint32_t* size) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (data && !size)
        return RegResult::InvalidParameter;
    if (!load() || !m_hive.hasKey(path))
        return RegResult::FileNotFound;
    const HiveValue* value = m_hive.value(path, name);
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

long HiveRegistry::setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                             std::uint32_t size) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!data && size)
        return RegResult::InvalidParameter;
    HiveValue value;
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

long HiveRegistry::deleteValue(RegKey key, const std::string& name) {
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!load() || !m_hive.value(path, name))
        return RegResult::FileNotFound;
    return modify([&](std::int64_t now) {
        return m_hive.deleteValue(path, name, now) ? RegResult::Success : RegResult::FileNotFound;
    });
}

long HiveRegistry::closeKey(RegKey key) {
    if (key == CurrentUserRoot)
        return RegResult::Success;
    return m_handles.erase(key) ? RegResult::Success : RegResult::InvalidHandle;
}

long HiveRegistry::valueNames(RegKey key, std::vector<std::string>& names) {
    names.clear();
    std::string path;
    if (!pathOf(key, path))
        return RegResult::InvalidHandle;
    if (!load() || !m_hive.hasKey(path))
        return RegResult::FileNotFound;
    names = m_hive.valueNames(path);
    return RegResult::Success;
}

} // namespace winehive
