#pragma once
// Wine prefixes with a user.reg for tests: the header Wine writes, then the sections a test gives.

#include <filesystem>
#include <string>

namespace testsupport {

/// The first lines Wine writes in user.reg, up to the first key.
extern const std::string HiveHeader;

/// Writes `prefix`/user.reg with HiveHeader followed by `sections`; returns its path.
std::filesystem::path writeUserReg(const std::filesystem::path& prefix, const std::string& sections);

} // namespace testsupport
