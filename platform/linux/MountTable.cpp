#include "platform/linux/MountTable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::linux {
namespace {

// The kernel separates the fields of a line by single blanks and escapes the blanks, tabs, line
// ends and backslashes inside them, but nothing else: a field may hold any other character, such
// as a carriage return, and may be empty (a mount with no source).
std::vector<std::string_view> fields(std::string_view line) {
    std::vector<std::string_view> out;
    for (std::size_t start = 0;;) {
        const std::size_t blank = line.find(' ', start);
        out.push_back(line.substr(start, blank == std::string_view::npos ? std::string_view::npos : blank - start));
        if (blank == std::string_view::npos)
            return out;
        start = blank + 1;
    }
}

// A decimal number; 0 when the field is none.
template <typename T> T number(std::string_view field) {
    T value = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    return error == std::errc() && end == field.data() + field.size() ? value : 0;
}

std::string unescape(std::string_view field) {
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
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        // id parent major:minor root mountpoint options [optional fields...] - fstype source superopts
        const std::vector<std::string_view> f = fields(std::string_view(text).substr(start, end - start));
        start = end + 1;
        if (f.size() < 6)
            continue;
        Mount m;
        m.id = number<std::uint64_t>(f[0]);
        m.parent = number<std::uint64_t>(f[1]);
        const auto colon = f[2].find(':');
        if (colon != std::string_view::npos) {
            m.major = number<unsigned>(f[2].substr(0, colon));
            m.minor = number<unsigned>(f[2].substr(colon + 1));
        }
        m.root = unescape(f[3]);
        m.mountPoint = unescape(f[4]);
        const auto dash = std::find(f.begin() + 6, f.end(), "-");
        if (dash != f.end() && dash + 1 != f.end())
            m.fsType = *(dash + 1);
        if (dash != f.end() && dash + 1 != f.end() && dash + 2 != f.end())
            m.source = unescape(*(dash + 2));
        if (dash != f.end() && dash + 1 != f.end() && dash + 2 != f.end() && dash + 3 != f.end())
            m.superOptions = unescape(*(dash + 3));
        mounts.push_back(std::move(m));
    }
    return mounts;
}

std::vector<Mount> readMounts(const std::string& source) {
    // Non-blocking and looked at before reading: a FIFO named as the table would wait for a writer
    // forever, and a device such as /dev/zero would never end.
    const int fd = ::open(source.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return {};
    struct stat st {};
    std::string text;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        char buffer[16384];
        for (;;) {
            const ssize_t n = ::read(fd, buffer, sizeof buffer);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                break;
            text.append(buffer, static_cast<std::size_t>(n));
        }
    }
    ::close(fd);
    return parseMountInfo(text);
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
