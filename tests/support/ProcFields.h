#pragma once
// Memory figures read straight from the kernel's own files, for tests that check what a run really
// took from the system (/proc/self/status, /proc/PID/status, /proc/meminfo).

#include <cstdint>
#include <fstream>
#include <string>

namespace testsupport {

/// The "Name:   N kB" field `name` of the /proc file `file`, in bytes; 0 when it is missing.
inline std::uint64_t procKilobytes(const std::string& file, const std::string& name) {
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line))
        if (line.rfind(name + ":", 0) == 0)
            return std::stoull(line.substr(name.size() + 1)) * 1024;
    return 0;
}

} // namespace testsupport
