#pragma once
// HKEY_CURRENT_USER through advapi32's wide-character calls. Strings cross this interface as UTF-8
// (the ANSI calls' shape) and are stored as UTF-16, so names and texts outside the ANSI code page
// keep every character; the sizes the caller sees are those of the UTF-8 form.

#include "platform/Registry.h"

namespace platform::windows {

class WindowsRegistry final : public Registry {
public:
    long openKey(RegKey root, const std::string& subKey, RegKey& result) override;
    long createKey(RegKey root, const std::string& subKey, RegKey& result) override;
    long queryValue(RegKey key, const std::string& name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override;
    long setValue(RegKey key, const std::string& name, std::uint32_t type, const std::uint8_t* data,
                  std::uint32_t size) override;
    long deleteValue(RegKey key, const std::string& name) override;
    long closeKey(RegKey key) override;
    long valueNames(RegKey key, std::vector<std::string>& names) override;
};

} // namespace platform::windows
