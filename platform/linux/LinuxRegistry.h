#pragma once
// HKEY_CURRENT_USER on Linux: the Wine prefix's user.reg.

#include "platform/Registry.h"
#include "platform/linux/Environment.h"

namespace platform::linux {

class LinuxRegistry final : public Registry {
public:
    explicit LinuxRegistry(Environment env) : m_env(std::move(env)) {}

    long openKey(RegKey, const std::string&, RegKey&) override { return RegResult::FileNotFound; }
    long createKey(RegKey, const std::string&, RegKey&) override { return RegResult::AccessDenied; }
    long queryValue(RegKey, const std::string&, std::uint32_t*, std::uint8_t*, std::uint32_t*) override {
        return RegResult::InvalidHandle;
    }
    long setValue(RegKey, const std::string&, std::uint32_t, const std::uint8_t*, std::uint32_t) override {
        return RegResult::InvalidHandle;
    }
    long deleteValue(RegKey, const std::string&) override { return RegResult::InvalidHandle; }
    long closeKey(RegKey) override { return RegResult::InvalidHandle; }
    long valueNames(RegKey, std::vector<std::string>&) override { return RegResult::InvalidHandle; }

private:
    Environment m_env;
};

} // namespace platform::linux
