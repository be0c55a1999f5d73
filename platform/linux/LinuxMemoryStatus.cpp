#include "platform/linux/LinuxMemoryStatus.h"

#include "platform/linux/CgroupMemory.h"

#include <fstream>
#include <map>
#include <sstream>
#include <sys/resource.h>

namespace platform::linux {
namespace {

std::string slurp(const char* path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

/// "Name:   1234 kB" lines, in bytes.
std::map<std::string, std::uint64_t> kilobyteFields(const std::string& text) {
    std::map<std::string, std::uint64_t> fields;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const auto colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        std::istringstream value(line.substr(colon + 1));
        std::uint64_t number = 0;
        std::string unit;
        if (value >> number) {
            value >> unit;
            fields[line.substr(0, colon)] = unit == "kB" ? number * 1024 : number;
        }
    }
    return fields;
}

/// The user address space of this process: what the architecture gives user mode, or less when a
/// resource limit says so.
std::uint64_t addressSpace() {
#if defined(__x86_64__)
    std::uint64_t space = 0x7ffffffff000ull;
#elif defined(__aarch64__)
    std::uint64_t space = 1ull << 48;
#else
    std::uint64_t space = 1ull << 32;
#endif
    rlimit limit {};
    if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < space)
        space = limit.rlim_cur;
    return space;
}

} // namespace

bool fillFromMemInfo(const std::string& meminfo, std::uint64_t processMapped, MemoryStatusRecord& record) {
    const auto f = kilobyteFields(meminfo);
    for (const char* needed : {"MemTotal", "MemAvailable", "SwapTotal", "SwapFree"})
        if (!f.count(needed))
            return false;
    const std::uint64_t total = f.at("MemTotal");
    const std::uint64_t avail = f.at("MemAvailable");
    record.ullTotalPhys = total;
    record.ullAvailPhys = avail;
    record.ullTotalPageFile = total + f.at("SwapTotal");
    record.ullAvailPageFile = avail + f.at("SwapFree");
    record.ullTotalVirtual = addressSpace();
    record.ullAvailVirtual = processMapped < record.ullTotalVirtual ? record.ullTotalVirtual - processMapped : 0;
    record.ullAvailExtendedVirtual = 0;
    // Used share in percent, rounded half to even.
    if (total != 0) {
        const std::uint64_t scaled = (total - avail) * 100;
        std::uint64_t load = scaled / total;
        const std::uint64_t rest = scaled % total;
        if (2 * rest > total || (2 * rest == total && load % 2 == 1))
            ++load;
        record.dwMemoryLoad = static_cast<std::uint32_t>(load);
    } else {
        record.dwMemoryLoad = 0;
    }
    return true;
}

std::optional<MemoryLimit> LinuxMemoryStatus::limit() {
    const auto meminfo = kilobyteFields(slurp("/proc/meminfo"));
    const auto swapFree = meminfo.find("SwapFree");
    return cgroupMemoryLimit(slurp("/proc/self/cgroup"), m_mountInfo, swapFree == meminfo.end() ? 0 : swapFree->second);
}

bool LinuxMemoryStatus::query(MemoryStatusRecord& record) {
    const auto self = kilobyteFields(slurp("/proc/self/status"));
    const auto mapped = self.find("VmSize");
    MemoryStatusRecord filled = record;
    if (!fillFromMemInfo(slurp("/proc/meminfo"), mapped == self.end() ? 0 : mapped->second, filled))
        return false;
    record = filled;
    return true;
}

} // namespace platform::linux
