#pragma once
// The variables the native platform takes its roots from (the home, temporary and Wine prefix
// folders, the desktop's data folders, the mount table to read), by name. main() hands the
// process's own to createNative(); a test hands one that points at its scratch folders, so that
// every root of the platform it builds is in reach of the test and nothing else.

#include <map>
#include <string>

namespace platform {

/// Variable name to value; a name left out is unset.
using Environment = std::map<std::string, std::string>;

/// The variables of this process that the native platform reads.
Environment processEnvironment();

/// The value of `name` in `env`; empty when it is unset.
inline std::string variable(const Environment& env, const std::string& name) {
    const auto found = env.find(name);
    return found == env.end() ? std::string() : found->second;
}

} // namespace platform
