#include "cleaning/RegStrings.h"

#include <algorithm>

namespace cleaning {

using namespace platform;

std::string ReadOpenRegString(Registry& registry, RegKey handle, const std::string& value) {
    std::uint32_t type = 0, size = 0;
    if (registry.queryValue(handle, value, &type, nullptr, &size) != RegResult::Success || type != RegType::Sz)
        return {};
    std::string buffer(size, ' ');
    if (registry.queryValue(handle, value, &type, reinterpret_cast<std::uint8_t*>(buffer.data()), &size) !=
        RegResult::Success)
        return {};
    buffer.resize(std::min<std::size_t>(size, buffer.size()));
    return buffer.substr(0, buffer.find('\0'));
}

std::string GetRegString(Registry& registry, RegKey root, const std::string& key, const std::string& value) {
    RegKey handle = 0;
    if (registry.openKey(root, key, handle) != RegResult::Success)
        return {};
    std::string text = ReadOpenRegString(registry, handle, value);
    registry.closeKey(handle);
    return text;
}

long SetRegString(Registry& registry, RegKey root, const std::string& key, const std::string& value,
                  const std::string& text) {
    RegKey handle = 0;
    long rc = registry.createKey(root, key, handle);
    if (rc != RegResult::Success)
        return rc;
    rc = registry.setValue(handle, value, RegType::Sz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                           static_cast<std::uint32_t>(text.size() + 1));
    registry.closeKey(handle);
    return rc;
}

} // namespace cleaning
