#include "tests/support/Scratch.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace testsupport {
namespace {

fs::path makeRoot() {
    const char* base = std::getenv("SCOURMILL_TEST_SCRATCH");
    std::string pattern = (base && *base ? std::string(base) : fs::temp_directory_path().string()) +
                          "/scourmill-test-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        std::abort();
    return pattern;
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
        {"XDG_RUNTIME_DIR", "runtime"}, {"WINEPREFIX", "wine"}};
    for (const auto& [variable, sub] : folders) {
        fs::create_directories(root / sub);
        setEnv(variable, (root / sub).string());
    }
    fs::permissions(root / "runtime", fs::perms::owner_all, fs::perm_options::replace);
    // No drive of the machine is listed: tests list their own mounts (ScratchMount).
    std::ofstream(root / "mountinfo", std::ios::trunc).flush();
    setEnv("SCOURMILL_MOUNTINFO", (root / "mountinfo").string());
    // Nor the desktop's session bus (its notification area): a test that needs a bus starts its own.
    setEnv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (root / "runtime" / "bus").string());
}

void leaveScratchEnvironment() {
    std::error_code ec;
    fs::remove_all(scratchRoot(), ec);
}

ScratchDir::ScratchDir() {
    static std::atomic<int> counter{0};
    m_path = scratchRoot() / ("dir" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::remove_all(m_path);
    fs::create_directories(m_path);
}

ScratchDir::~ScratchDir() {
    std::error_code ec;
    // Tests make files read-only on purpose; give write permission back so removal works.
    for (auto it = fs::recursive_directory_iterator(m_path, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec))
        if (!it->is_symlink())
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(m_path, ec);
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

void setEnv(const std::string& name, const std::string& value) {
    ::setenv(name.c_str(), value.c_str(), 1);
}

} // namespace testsupport
