#include "platform/linux/MountTable.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string_view>

namespace platform::linux {
namespace {

std::string unescape(const std::string& field) {
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() &&
            std::all_of(field.begin() + i + 1, field.begin() + i + 4, [](char c) { return c >= '0' && c <= '7'; })) {
            out += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0'));
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

constexpr std::array<std::string_view, 24> PseudoTypes = {
    "proc",  "sysfs",     "cgroup",   "cgroup2",     "devpts",     "devtmpfs", "mqueue",   "debugfs",
    "tracefs", "securityfs", "pstore", "bpf",       "configfs",   "fusectl",  "hugetlbfs", "autofs",
    "binfmt_misc", "rpc_pipefs", "nsfs", "efivarfs", "selinuxfs", "fuse.gvfsd-fuse", "fuse.portal", "ramfs"};

bool under(const std::string& path, std::string_view top) {
    return path.compare(0, top.size(), top) == 0 && (path.size() == top.size() || path[top.size()] == '/');
}

} // namespace

std::vector<Mount> parseMountInfo(const std::string& text) {
    std::vector<Mount> mounts;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        // id parent major:minor root mountpoint options [optional fields...] - fstype source superopts
        std::istringstream in(line);
        std::string id, parent, devno, root, point, options;
        if (!(in >> id >> parent >> devno >> root >> point >> options))
            continue;
        std::string field;
        while (in >> field && field != "-") {
        }
        Mount m;
        m.id = std::strtoull(id.c_str(), nullptr, 10);
        m.parent = std::strtoull(parent.c_str(), nullptr, 10);
        in >> m.fsType >> m.source;
        m.mountPoint = unescape(point);
        m.source = unescape(m.source);
        const auto colon = devno.find(':');
        if (colon != std::string::npos) {
            m.major = static_cast<unsigned>(std::stoul(devno.substr(0, colon)));
            m.minor = static_cast<unsigned>(std::stoul(devno.substr(colon + 1)));
        }
        mounts.push_back(std::move(m));
    }
    return mounts;
}

std::vector<Mount> readMounts(const std::string& source) {
    std::ifstream file(source);
    std::stringstream text;
    text << file.rdbuf();
    return parseMountInfo(text.str());
}

const Mount* mountById(const std::vector<Mount>& mounts, std::uint64_t id) {
    for (const Mount& m : mounts)
        if (m.id == id)
            return &m;
    return nullptr;
}

bool isRealFilesystem(const Mount& mount) {
    if (std::find(PseudoTypes.begin(), PseudoTypes.end(), mount.fsType) != PseudoTypes.end())
        return false;
    for (std::string_view top : {"/proc", "/sys", "/dev"})
        if (under(mount.mountPoint, top))
            return false;
    // /run holds runtime state, except where desktops mount removable media.
    if (under(mount.mountPoint, "/run") && !under(mount.mountPoint, "/run/media"))
        return false;
    return true;
}

} // namespace platform::linux
