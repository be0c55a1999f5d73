#include "tests/support/Scratch.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace fs = std::filesystem;

namespace testsupport {
namespace {

fs::path makeRoot() {
    const char* base = std::getenv("SCOURMILL_TEST_SCRATCH");
    const fs::path parent = base && *base ? fs::path(base) : fs::temp_directory_path();
    std::random_device random;
    // A new folder of its own: create_directory is false when the name is taken.
    for (int attempt = 0; attempt < 100; ++attempt) {
        const fs::path candidate = parent / ("scourmill-test-" + std::to_string(random()));
        std::error_code ec;
        if (fs::create_directory(candidate, ec))
            return candidate;
    }
    std::abort();
}

/// Removes `path` and everything below it, never through a link: what a link leads to stays. Tests
/// make files read-only on purpose, so write permission is given back first.
void removeTree(const fs::path& path) {
#ifdef _WIN32
    // The standard library here takes a link to a folder (a junction, or a host link under Wine)
    // for the folder itself, and would empty its target.
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return;
    if (attributes & FILE_ATTRIBUTE_READONLY)
        ::SetFileAttributesW(path.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        ::DeleteFileW(path.c_str());
        return;
    }
    if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
        std::error_code ec;
        for (auto it = fs::directory_iterator(path, ec); !ec && it != fs::directory_iterator(); it.increment(ec))
            removeTree(it->path());
    }
    ::RemoveDirectoryW(path.c_str());
#else
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(path, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        if (!it->is_symlink())
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(path, ec);
#endif
}

} // namespace

const fs::path& scratchRoot() {
    static const fs::path root = makeRoot();
    return root;
}

void enterScratchEnvironment() {
    const fs::path& root = scratchRoot();
    const std::pair<const char*, const char*> folders[] = {
        {"HOME", "home"},           {"TMPDIR", "tmp"},           {"XDG_DATA_HOME", "data"},
        {"XDG_CONFIG_HOME", "config"}, {"XDG_CACHE_HOME", "cache"}, {"XDG_STATE_HOME", "state"},
        {"XDG_RUNTIME_DIR", "runtime"}, {"WINEPREFIX", "wine"},
#ifdef _WIN32
        // What Windows takes the temporary folder and the profile from.
        {"TMP", "tmp"}, {"TEMP", "tmp"}, {"USERPROFILE", "home"},
#endif
    };
    for (const auto& [variable, sub] : folders) {
        fs::create_directories(root / sub);
        setEnv(variable, (root / sub).string());
    }
    fs::permissions(root / "runtime", fs::perms::owner_all, fs::perm_options::replace);
    // No drive of the machine is listed: tests list their own mounts (ScratchMount).
    std::ofstream(root / "mountinfo", std::ios::trunc).flush();
    setEnv("SCOURMILL_MOUNTINFO", (root / "mountinfo").string());
    // Nor the machine's running wineservers: a test that needs one holding the prefix makes its own.
    fs::create_directories(root / "wineservers");
    setEnv("SCOURMILL_WINESERVERS", (root / "wineservers").string());
    // Nor the desktop's session bus (its notification area): a test that needs a bus starts its own.
    setEnv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (root / "runtime" / "bus").string());
}

void leaveScratchEnvironment() {
    removeTree(scratchRoot());
}

ScratchDir::ScratchDir() {
    static std::atomic<int> counter{0};
    m_path = scratchRoot() / ("dir" + std::to_string(counter++));
    removeTree(m_path);
    fs::create_directories(m_path);
}

ScratchDir::~ScratchDir() {
    removeTree(m_path);
}

fs::path ScratchDir::write(const std::string& relative, const std::string& content) const {
    const fs::path target = m_path / relative;
    fs::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << content;
    return target;
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::map<fs::path, std::string> treeSnapshot(const fs::path& root) {
    std::map<fs::path, std::string> seen;
    for (const auto& e : fs::recursive_directory_iterator(root)) {
        const auto status = e.symlink_status();
        std::string facts = std::to_string(static_cast<int>(status.type())) + " " +
                            std::to_string(static_cast<unsigned>(status.permissions())) + " ";
#ifndef _WIN32
        struct stat st {};
        ::lstat(e.path().c_str(), &st);
        facts = std::to_string(st.st_uid) + " " + facts;
#endif
        if (fs::is_symlink(status))
            facts += fs::read_symlink(e.path()).string();
        else if (fs::is_regular_file(status))
            facts += readFile(e.path());
        seen[e.path().lexically_relative(root)] = facts;
    }
    return seen;
}

void setEnv(const std::string& name, const std::string& value) {
#ifdef _WIN32
    // Both the C runtime's copy and the process environment the Win32 calls read.
    ::_putenv_s(name.c_str(), value.c_str());
    ::SetEnvironmentVariableA(name.c_str(), value.c_str());
#else
    ::setenv(name.c_str(), value.c_str(), 1);
#endif
}

} // namespace testsupport
