#include "tests/support/ScratchMount.h"

#include "tests/support/LoopImage.h"
#include "tests/support/Scratch.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace testsupport {
namespace {

/// The mount ID of the mount `point` leads to now, as text; empty when unknown.
std::string mountIdOf(const fs::path& point) {
    struct statx sx {};
    if (::statx(AT_FDCWD, point.c_str(), 0, 0x1000 /* STATX_MNT_ID */, &sx) != 0 || !(sx.stx_mask & 0x1000))
        return {};
    return std::to_string(sx.stx_mnt_id);
}

std::string firstField(const std::string& line) {
    return line.substr(0, line.find(' '));
}

void rewriteTable(const std::string& dropId, const std::string& addLine) {
    std::ifstream in(mountTablePath());
    std::ostringstream kept;
    for (std::string line; std::getline(in, line);)
        if (firstField(line) != dropId)
            kept << line << "\n";
    if (!addLine.empty())
        kept << addLine << "\n";
    in.close();
    std::ofstream(mountTablePath(), std::ios::trunc) << kept.str();
}

} // namespace

fs::path mountTablePath() {
    return scratchRoot() / "mountinfo";
}

void addMountTableLine(const std::string& line) {
    rewriteTable("", line);
}

void removeMountTableLine(const std::string& id) {
    rewriteTable(id, "");
}

ScratchMount::ScratchMount(const std::string& arguments, const fs::path& point) : m_point(point) {
    if (::geteuid() != 0) {
        m_reason = "mounting needs root";
        return;
    }
    if (!fs::exists(fs::symlink_status(point)))
        fs::create_directories(point); // a file mounted over a file needs the file there already
    if (!runQuietly("mount " + arguments + " '" + point.string() + "'")) {
        m_reason = "mounting is not allowed here (mount " + arguments + ")";
        return;
    }
    m_mounted = true;
    m_id = mountIdOf(point);
    std::ifstream kernel("/proc/self/mountinfo");
    for (std::string line; std::getline(kernel, line);)
        if (!m_id.empty() && firstField(line) == m_id)
            addMountTableLine(line);
}

ScratchMount::~ScratchMount() {
    if (!unmount()) // busy: let it go once nothing uses it any more
        runQuietly("umount -l '" + m_point.string() + "'");
}

bool ScratchMount::unmount() {
    if (!m_mounted)
        return true;
    m_mounted = !runQuietly("umount '" + m_point.string() + "'");
    if (!m_mounted)
        rewriteTable(m_id, "");
    return !m_mounted;
}

} // namespace testsupport
