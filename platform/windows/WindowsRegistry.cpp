#include "platform/windows/WindowsRegistry.h"

#include "platform/windows/WinText.h"

#include <windows.h>

#include <cstring>

namespace platform::windows {
namespace {

HKEY hkey(RegKey key) {
    // The interface's root is HKEY_CURRENT_USER's number; the real handle is sign-extended.
    return key == CurrentUserRoot ? HKEY_CURRENT_USER : reinterpret_cast<HKEY>(key);
}

bool isText(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

} // namespace

long WindowsRegistry::openKey(RegKey root, const std::string& subKey, RegKey& result) {
    HKEY opened = nullptr;
    const LONG rc = ::RegOpenKeyExW(hkey(root), widen(subKey).c_str(), 0, MAXIMUM_ALLOWED, &opened);
    if (rc == ERROR_SUCCESS)
        result = reinterpret_cast<RegKey>(opened);
    return rc;
}

long WindowsRegistry::createKey(RegKey root, const std::string& subKey, RegKey& result) {
    HKEY created = nullptr;
    const LONG rc = ::RegCreateKeyExW(hkey(root), widen(subKey).c_str(), 0, nullptr, 0, MAXIMUM_ALLOWED, nullptr,
                                      &created, nullptr);
    if (rc == ERROR_SUCCESS)
        result = reinterpret_cast<RegKey>(created);
    return rc;
}

long WindowsRegistry::queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                                 std::uint32_t* size) {
    const std::wstring wname = widen(name);
    DWORD kind = 0, bytes = 0;
    LONG rc = ::RegQueryValueExW(hkey(key), wname.c_str(), nullptr, &kind, nullptr, &bytes);
    if (rc != ERROR_SUCCESS)
        return rc;
    if (type)
        *type = kind;
    if (!isText(kind)) {
        if (!size)
            return data ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
        DWORD given = *size;
        rc = ::RegQueryValueExW(hkey(key), wname.c_str(), nullptr, nullptr, data, &given);
        *size = given;
        return rc;
    }
    // Texts are read whole as UTF-16 and measured as UTF-8, closing NULs included.
    std::wstring text;
    do {
        text.assign((bytes + 1) / sizeof(wchar_t), L'\0');
        rc = ::RegQueryValueExW(hkey(key), wname.c_str(), nullptr, &kind, reinterpret_cast<BYTE*>(text.data()), &bytes);
    } while (rc == ERROR_MORE_DATA);
    if (rc != ERROR_SUCCESS)
        return rc;
    text.resize(bytes / sizeof(wchar_t));
    const std::string utf8 = narrow(text);
    if (!size)
        return data ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
    const auto needed = static_cast<std::uint32_t>(utf8.size());
    if (data && *size < needed) {
        *size = needed;
        return ERROR_MORE_DATA;
    }
    if (data)
        std::memcpy(data, utf8.data(), needed);
    *size = needed;
    return ERROR_SUCCESS;
}

long WindowsRegistry::setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                               std::uint32_t size) {
    if (!isText(type))
        return ::RegSetValueExW(hkey(key), widen(name).c_str(), 0, type, data, size);
    const std::wstring text = widen(std::string(reinterpret_cast<const char*>(data), data ? size : 0));
    return ::RegSetValueExW(hkey(key), widen(name).c_str(), 0, type, reinterpret_cast<const BYTE*>(text.data()),
                            static_cast<DWORD>(text.size() * sizeof(wchar_t)));
}

long WindowsRegistry::deleteValue(RegKey key, const std::string& name) {
    return ::RegDeleteValueW(hkey(key), widen(name).c_str());
}

long WindowsRegistry::closeKey(RegKey key) {
    return ::RegCloseKey(hkey(key));
}

long WindowsRegistry::valueNames(RegKey key, std::vector<std::string>& names) {
    DWORD count = 0, longest = 0;
    LONG rc = ::RegQueryInfoKeyW(hkey(key), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, &longest,
                                 nullptr, nullptr, nullptr);
    if (rc != ERROR_SUCCESS)
        return rc;
    names.clear();
    std::wstring name(longest + 1, L'\0');
    for (DWORD i = 0; i < count; ++i) {
        DWORD length = static_cast<DWORD>(name.size());
        rc = ::RegEnumValueW(hkey(key), i, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (rc == ERROR_NO_MORE_ITEMS)
            break;
        if (rc != ERROR_SUCCESS)
            return rc;
        names.push_back(narrow(name.c_str(), static_cast<int>(length)));
    }
    return ERROR_SUCCESS;
}

} // namespace platform::windows
