#pragma once
// String values of the registry as the main window reads and writes them (the Shell Folders
// paths). Missing keys and values read as empty text; nothing here reports a failure.

#include "platform/Registry.h"

#include <string>

namespace cleaning {

/// The REG_SZ value `value` of `key` below `root` (usually platform::CurrentUserRoot), cut at its
/// first NUL; empty when the key or the value is missing or the value is not a string. The key
/// is closed again.
std::string GetRegString(platform::Registry& registry, platform::RegKey root, const std::string& key,
                         const std::string& value);

/// Writes `text` as the REG_SZ value `value` of `key` below `root`, creating the key when missing,
/// and closes it. The registry's result (platform::RegResult::Success when written).
long SetRegString(platform::Registry& registry, platform::RegKey root, const std::string& key, const std::string& value,
                  const std::string& text);

/// The REG_SZ value `value` of the already open key `handle`, read into a buffer of the size the
/// registry gives and cut at its first NUL; empty when missing or not a string. The key stays open.
std::string ReadOpenRegString(platform::Registry& registry, platform::RegKey handle, const std::string& value);

} // namespace cleaning
