#pragma once
// The current user's registry hive, with the calling conventions of advapi32: opaque key handles
// and Win32 result codes, so that callers keep the exact behaviour of the Windows calls. On Linux
// the hive is the Wine prefix's user.reg.

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

using RegKey = std::uintptr_t;
constexpr RegKey CurrentUserRoot = 0x80000001u;

namespace RegType {
constexpr std::uint32_t None = 0;
constexpr std::uint32_t Sz = 1;
constexpr std::uint32_t ExpandSz = 2;
constexpr std::uint32_t Binary = 3;
constexpr std::uint32_t Dword = 4;
constexpr std::uint32_t MultiSz = 7;
} // namespace RegType

namespace RegResult {
constexpr long Success = 0;
constexpr long FileNotFound = 2;
constexpr long AccessDenied = 5;
constexpr long InvalidHandle = 6;
/// The hive is in use by its owner and cannot be written now (on Linux: the prefix's wineserver runs).
constexpr long SharingViolation = 32;
constexpr long InvalidParameter = 87;
constexpr long MoreData = 234;
} // namespace RegResult

class Registry {
public:
    virtual ~Registry() = default;

    // Every call that changes the hive fails with SharingViolation while the hive's owner holds it
    // (on Linux: while a wineserver runs for the prefix), and leaves the hive as it was.

    /// RegOpenKeyA: opens `subKey` below `root` (an open key or CurrentUserRoot, HKEY_CURRENT_USER).
    virtual long openKey(RegKey root, const std::string& subKey, RegKey& result) = 0;
    /// RegCreateKeyA: opens `subKey`, creating it and its parents when missing.
    virtual long createKey(RegKey root, const std::string& subKey, RegKey& result) = 0;
    /// RegQueryValueExA: with `data` null only `type` and `size` are filled; with a buffer too small
    /// the result is MoreData and `size` holds the size needed. Strings count their closing NUL.
    virtual long queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                            std::uint32_t* size) = 0;
    /// RegSetValueExA. Strings are given as the ANSI call takes them (UTF-8), with their NUL.
    virtual long setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                          std::uint32_t size) = 0;
    /// RegDeleteValueA.
    virtual long deleteValue(RegKey key, const std::string& name) = 0;
    /// RegCloseKey.
    virtual long closeKey(RegKey key) = 0;
    /// The names of the values of an open key, in stored order (for previews).
    virtual long valueNames(RegKey key, std::vector<std::string>& names) = 0;
};

} // namespace platform
