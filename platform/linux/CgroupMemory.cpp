#include "platform/linux/CgroupMemory.h"

#include "platform/linux/MountTable.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

namespace platform::linux {
namespace {

/// cgroup v1 writes "no limit" as the largest page count in bytes (9223372036854771712 with 4 KiB
/// pages); anything this large limits nothing.
constexpr std::uint64_t Unlimited = std::uint64_t{1} << 62;

/// A byte count from the control file `name` in `folder`: empty when the file is missing or
/// unreadable, Unlimited for "max".
std::optional<std::uint64_t> figure(const std::string& folder, const char* name) {
    std::ifstream in(folder + "/" + name);
    std::string text;
    if (!(in >> text))
        return std::nullopt;
    if (text == "max")
        return Unlimited;
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return std::min(value, Unlimited);
}

std::uint64_t roomBelow(std::uint64_t limit, std::uint64_t used) {
    return limit > used ? limit - used : 0;
}

/// The group's page cache that the kernel drops before it ends anything at the limit: the files'
/// pages on the inactive list, from memory.stat (`key`), 0 when not shown.
std::uint64_t reclaimable(const std::string& folder, std::string_view key) {
    std::ifstream in(folder + "/memory.stat");
    std::string name;
    std::uint64_t value = 0;
    while (in >> name >> value)
        if (name == key)
            return value;
    return 0;
}

/// What the group really holds: its charge without the page cache it can give back.
std::uint64_t heldBy(std::uint64_t charged, std::uint64_t cache) {
    return charged - std::min(charged, cache);
}

/// The limit of one level, v2; empty when it sets none.
std::optional<MemoryLimit> levelV2(const std::string& folder, std::uint64_t swapFree) {
    const auto max = figure(folder, "memory.max");
    const auto current = figure(folder, "memory.current");
    if (!max || !current || *max >= Unlimited)
        return std::nullopt;
    std::uint64_t swap = swapFree;
    if (const auto swapMax = figure(folder, "memory.swap.max"); swapMax && *swapMax < Unlimited)
        swap = std::min(swap, roomBelow(*swapMax, figure(folder, "memory.swap.current").value_or(*swapMax)));
    return MemoryLimit{*max, roomBelow(*max, heldBy(*current, reclaimable(folder, "inactive_file"))) + swap};
}

/// The limit of one level, v1; empty when it sets none.
std::optional<MemoryLimit> levelV1(const std::string& folder, std::uint64_t swapFree) {
    const auto max = figure(folder, "memory.limit_in_bytes");
    const auto usage = figure(folder, "memory.usage_in_bytes");
    if (!max || !usage || *max >= Unlimited)
        return std::nullopt;
    // The hierarchy's own total: a level's usage counts its subgroups' too.
    const std::uint64_t cache = reclaimable(folder, "total_inactive_file");
    std::uint64_t headroom = roomBelow(*max, heldBy(*usage, cache)) + swapFree;
    // Memory and swap together, where the kernel accounts swap.
    if (const auto both = figure(folder, "memory.memsw.limit_in_bytes"); both && *both < Unlimited)
        headroom = std::min(headroom,
                            roomBelow(*both, heldBy(figure(folder, "memory.memsw.usage_in_bytes").value_or(*both), cache)));
    return MemoryLimit{*max, headroom};
}

/// The folder of cgroup `path` (as /proc/self/cgroup names it) under `mount`; empty when the
/// mount does not show that group.
std::string folderOf(const Mount& mount, const std::string& path) {
    const std::string& root = mount.root;
    if (root == "/")
        return mount.mountPoint + (path == "/" ? "" : path);
    if (path.compare(0, root.size(), root) != 0 || (path.size() > root.size() && path[root.size()] != '/'))
        return {};
    return mount.mountPoint + path.substr(root.size());
}

bool hasOption(const std::string& options, std::string_view wanted) {
    std::istringstream list(options);
    for (std::string option; std::getline(list, option, ',');)
        if (option == wanted)
            return true;
    return false;
}

void tighten(std::optional<MemoryLimit>& tightest, const std::optional<MemoryLimit>& level) {
    if (!level)
        return;
    if (!tightest)
        tightest = level;
    tightest->limit = std::min(tightest->limit, level->limit);
    tightest->headroom = std::min(tightest->headroom, level->headroom);
}

} // namespace

std::optional<MemoryLimit> cgroupMemoryLimit(const std::string& procCgroup, const std::string& mountInfo,
                                             std::uint64_t swapFree) {
    // "hierarchy:controllers:path" lines: "0::/path" for v2, "4:memory:/path" for v1's memory.
    std::optional<std::string> unified, memoryV1;
    std::istringstream lines(procCgroup);
    for (std::string line; std::getline(lines, line);) {
        const auto first = line.find(':');
        const auto second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos)
            continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        std::string path = line.substr(second + 1);
        if (line.compare(0, first, "0") == 0 && controllers.empty())
            unified = std::move(path);
        else if (hasOption(controllers, "memory"))
            memoryV1 = std::move(path);
    }

    std::optional<MemoryLimit> tightest;
    for (const Mount& mount : readMounts(mountInfo)) {
        const bool v2 = mount.fsType == "cgroup2" && unified;
        const bool v1 = mount.fsType == "cgroup" && memoryV1 && hasOption(mount.superOptions, "memory");
        if (!v2 && !v1)
            continue;
        const std::string own = folderOf(mount, v2 ? *unified : *memoryV1);
        if (own.empty())
            continue;
        // From the process's own group up to the top of the mount, each level by itself.
        for (std::string folder = own;; folder.erase(folder.rfind('/'))) {
            tighten(tightest, v2 ? levelV2(folder, swapFree) : levelV1(folder, swapFree));
            if (folder.size() <= mount.mountPoint.size())
                break;
        }
    }
    return tightest;
}

} // namespace platform::linux
